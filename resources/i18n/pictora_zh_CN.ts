<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
  <name></name>
  <!-- Names -->
  <message id="APP_SHORT_NAME">
    <source></source>
    <translation>Downloaderpictora</translation>
  </message>
  <message id="APP_LONG_NAME">
    <source></source>
    <translation>Downloaderpictora – 照片下载</translation>
  </message>
  <!-- Start-up -->
  <message id="MSG_FIRST_LAUNCH">
    <source></source>
    <translation>是否在开机时启动 Downloaderpictora？这样新照片就会自动下载。您可以随时在菜单中更改此设置。</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_START">
    <source></source>
    <translation>开机时启动</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_LATER">
    <source></source>
    <translation>暂不</translation>
  </message>
  <message id="MSG_ERR_START">
    <source></source>
    <translation>Downloaderpictora 无法启动。请重试，或重新启动电脑。</translation>
  </message>
  <message id="MSG_ERR_MACHINE_ID">
    <source></source>
    <translation>无法读取此电脑的标识，因此 Downloaderpictora 无法启动。请稍后重试。</translation>
  </message>
  <message id="MSG_ERR_PROFILE_IN_USE">
    <source></source>
    <translation>Downloaderpictora 已在您的另一个会话中运行，无法从这里连接。请先在那里退出。</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_OK_MAC">
    <source></source>
    <translation>保存</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CANCEL">
    <source></source>
    <translation>取消</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CLOSE">
    <source></source>
    <translation>关闭</translation>
  </message>
  <!-- Menu -->
  <message id="MENU_DOWNLOAD">
    <source></source>
    <translation>立即下载</translation>
  </message>
  <message id="MENU_DISP_SETTING">
    <source></source>
    <translation>下载文件夹…</translation>
  </message>
  <message id="MENU_LOGIN">
    <source></source>
    <translation>登录…</translation>
  </message>
  <message id="MENU_LOGOUT">
    <source></source>
    <translation>退出登录</translation>
  </message>
  <message id="MENU_HELP">
    <source></source>
    <translation>帮助</translation>
  </message>
  <message id="MENU_ABOUT">
    <source></source>
    <translation>关于 Downloaderpictora</translation>
  </message>
  <message id="MENU_LAUNCH_SETTING">
    <source></source>
    <translation>开机时启动</translation>
  </message>
  <message id="MENU_EXIT_MAC">
    <source></source>
    <translation>退出 Downloaderpictora</translation>
  </message>
  <!-- Tooltips -->
  <message id="TOOL_TIP_STATUS_NORMAL">
    <source></source>
    <translation>Downloaderpictora：正在等待新照片</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DOWNLOADING">
    <source></source>
    <translation>Downloaderpictora：正在下载照片</translation>
  </message>
  <message id="TOOL_TIP_STATUS_OFFLINE">
    <source></source>
    <translation>Downloaderpictora：无法连接到照片服务</translation>
  </message>
  <message id="TOOL_TIP_STATUS_MAINTENANCE">
    <source></source>
    <translation>Downloaderpictora：照片服务目前无法使用</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DISK_FULL">
    <source></source>
    <translation>Downloaderpictora：磁盘已满</translation>
  </message>
  <message id="TOOL_TIP_STATUS_ERR_DOWNLOAD">
    <source></source>
    <translation>Downloaderpictora：部分照片无法保存</translation>
  </message>
  <message id="TOOL_TIP_STATUS_UNLINK">
    <source></source>
    <translation>Downloaderpictora：未登录</translation>
  </message>
  <!-- Status view -->
  <message id="STATUS_UP_TO_DATE">
    <source></source>
    <translation>已是最新</translation>
  </message>
  <message id="STATUS_NOT_LOOKED_YET">
    <source></source>
    <translation>正在等待首次检查</translation>
  </message>
  <message id="STATUS_LOOKING">
    <source></source>
    <translation>正在检查新照片…</translation>
  </message>
  <message id="STATUS_FETCHING">
    <source></source>
    <translation>正在下载照片：%1/%2</translation>
  </message>
  <message id="STATUS_STILL_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>还有 %Ln 张照片未下载</numerusform>
    </translation>
  </message>
  <message id="STATUS_STILL_TO_COME_HINT">
    <source></source>
    <translation>未能下载的照片会自动重试。</translation>
  </message>
  <message id="STATUS_NOT_LINKED">
    <source></source>
    <translation>未登录</translation>
  </message>
  <message id="STATUS_NOT_LINKED_HINT">
    <source></source>
    <translation>请登录照片服务以接收照片。</translation>
  </message>
  <message id="STATUS_LOGIN_NEEDED">
    <source></source>
    <translation>请重新登录</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS">
    <source></source>
    <translation>您已登录</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS_HINT">
    <source></source>
    <translation>请在下方查看照片的保存位置。关闭此窗口后即开始下载。</translation>
  </message>
  <message id="STATUS_OFFLINE">
    <source></source>
    <translation>无法连接到照片服务</translation>
  </message>
  <message id="STATUS_OFFLINE_HINT">
    <source></source>
    <translation>连接恢复后将继续下载。</translation>
  </message>
  <message id="STATUS_OFFLINE_UNTIL_HINT">
    <source></source>
    <translation>下次尝试：%1，或在连接恢复时。</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK">
    <source></source>
    <translation>此电脑的时钟不准</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK_HINT">
    <source></source>
    <translation>此电脑时间为 %1，照片服务为 %2。相差超过 15 分钟时，服务会拒绝一切请求。请调整此电脑的日期和时间。</translation>
  </message>
  <message id="STATUS_DISK_FULL">
    <source></source>
    <translation>磁盘已满</translation>
  </message>
  <message id="STATUS_NOT_SAVED">
    <source></source>
    <translation>无法保存照片</translation>
  </message>
  <message id="STATUS_FAILED">
    <source></source>
    <translation>上次检查照片失败</translation>
  </message>
  <message id="STATUS_TODAY" numerus="yes">
    <source></source>
    <translation>
      <numerusform>今天 %Ln 张</numerusform>
    </translation>
  </message>
  <message id="STATUS_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln 张未下载</numerusform>
    </translation>
  </message>
  <message id="STATUS_LAST_LOOK">
    <source></source>
    <translation>上次检查：%1</translation>
  </message>
  <message id="STATUS_NEXT_LOOK">
    <source></source>
    <translation>下次检查：%1</translation>
  </message>
  <message id="STATUS_FREE_ROOM">
    <source></source>
    <translation>可用 %1</translation>
  </message>
  <message id="STATUS_FOLDER_MISSING">
    <source></source>
    <translation>找不到</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER">
    <source></source>
    <translation>打开</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER_NAMED">
    <source></source>
    <translation>打开文件夹 %1</translation>
  </message>
  <message id="STATUS_CHOOSE_FOLDER">
    <source></source>
    <translation>选择文件夹…</translation>
  </message>
  <message id="STATUS_LAST_PICTURES">
    <source></source>
    <translation>最近的照片</translation>
  </message>
  <message id="STATUS_PICTURE_BUTTON">
    <source></source>
    <translation>打开此照片所在的文件夹</translation>
  </message>
  <message id="STATUS_NO_PICTURES_YET">
    <source></source>
    <translation>最近收到的照片会显示在这里。</translation>
  </message>
  <!-- Download folders -->
  <message id="DLG_SETTING_SAVE_FOLDER_TITLE">
    <source></source>
    <translation>照片保存位置</translation>
  </message>
  <message id="DLG_SETTING_FOLDER">
    <source></source>
    <translation>新照片的文件夹(&amp;F)：</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_FOLDER">
    <source></source>
    <translation>选择新照片的文件夹</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_10G_FOLDER">
    <source></source>
    <translation>选择长期存储（10G）照片的文件夹</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_SELECT_MAC">
    <source></source>
    <translation>选择…</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD">
    <source></source>
    <translation>同时将长期存储（10G）中的照片和预览图下载到此文件夹(&amp;L)：</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER">
    <source></source>
    <translation>按拍摄日期建立文件夹(&amp;D)</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD_SUPPLEMENT">
    <source></source>
    <translation>：适用于两个文件夹（分类规则仅用于第一个）</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYYMMDD_MAC">
    <source></source>
    <translation>YYYY_MM_DD</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_MAC">
    <source></source>
    <translation>YYYY/MM</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_YYYYMMDD_MAC">
    <source></source>
    <translation>YYYY/YYYY_MM_DD</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_YYYYMMDD_MAC">
    <source></source>
    <translation>YYYY/MM/YYYY_MM_DD</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_NONE">
    <source></source>
    <translation>不按日期建立文件夹</translation>
  </message>
  <message id="DLG_SETTING_SORTING_RULE_NAME">
    <source></source>
    <translation>分类规则</translation>
  </message>
  <message id="DLG_SETTING_CREATE_SUBFOLDER">
    <source></source>
    <translation>按照您账户中的分类规则将照片归入文件夹(&amp;S)</translation>
  </message>
  <message id="DLG_SETTING_DOWNLOAD_METADATA">
    <source></source>
    <translation>下载带元数据的照片（如有）(&amp;M)</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_ACCESS">
    <source></source>
    <translation>无法使用此文件夹：它不存在，或者您没有写入权限。请选择其他文件夹，或先创建此文件夹。</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_SUPPORT">
    <source></source>
    <translation>无法将照片保存到此文件夹，因为它位于可移动磁盘或网络磁盘上，或者属于系统。请选择此电脑内置磁盘上的文件夹。</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_TOO_LONG">
    <source></source>
    <translation>此文件夹的路径过长。请选择路径较短的文件夹。</translation>
  </message>
  <message id="MSG_ERR_SETTINGS_NOT_SAVED">
    <source></source>
    <translation>无法保存您的设置，现在的设置只在退出 Downloaderpictora 之前有效。请检查磁盘是否已满，以及您对主文件夹是否有写入权限，然后重新保存。</translation>
  </message>
  <!-- About -->
  <message id="DLG_ABOUT_TITLE">
    <source></source>
    <translation>关于 Downloaderpictora</translation>
  </message>
  <!-- What does not open -->
  <message id="MSG_PAGE_NOT_OPENED">
    <source></source>
    <translation>无法打开网页浏览器。请复制此地址，并自行在浏览器中打开。</translation>
  </message>
  <message id="MSG_FOLDER_NOT_OPENED">
    <source></source>
    <translation>无法打开此文件夹。它可能已被移动或删除，或者用于显示文件夹的程序未能启动。</translation>
  </message>
  <message id="MSG_ERR_LAUNCH_SETTING">
    <source></source>
    <translation>无法更改“开机时启动”。请检查磁盘是否已满，以及您对主文件夹是否有写入权限，然后重试。</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_ADDRESS">
    <source></source>
    <translation>复制地址</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_PATH">
    <source></source>
    <translation>复制路径</translation>
  </message>
  <!-- Results -->
  <message id="MSG_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>新照片已下载。点击此处可打开文件夹。</translation>
  </message>
  <message id="MSG_10G_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>长期存储中的新照片已下载。点击此处可打开文件夹。</translation>
  </message>
  <message id="MSG_DOWNLOAD_ZERO">
    <source></source>
    <translation>没有可下载的新照片。</translation>
  </message>
  <message id="MSG_INITIAL_ACCESS_COMPLETE">
    <source></source>
    <translation>您已登录。现在将下载您的照片。</translation>
  </message>
  <message id="MSG_ERR_CERTIFICATE">
    <source></source>
    <translation>无法与照片服务建立安全连接。请检查此电脑的日期和时间是否正确，以及您的网络是否允许安全连接。</translation>
  </message>
  <message id="MSG_ERR_COMMUNICATION">
    <source></source>
    <translation>照片服务返回的内容无法识别。稍后会自动重试。</translation>
  </message>
  <message id="MSG_ERR_DISK_FULL">
    <source></source>
    <translation>下载文件夹所在的磁盘已满。请释放一些空间，之后下载会自动继续。</translation>
  </message>
  <message id="MSG_ERR_OFFLINE">
    <source></source>
    <translation>无法连接到照片服务。请检查您的网络连接；稍后会自动重试。</translation>
  </message>
  <message id="MSG_ERR_UNLINK">
    <source></source>
    <translation>您尚未登录照片服务。要接收照片，请从菜单中选择“登录…”，或点击此处。</translation>
  </message>
  <message id="MSG_ERR_RETRY">
    <source></source>
    <translation>照片服务正忙。稍后会自动重试。</translation>
  </message>
  <message id="MSG_ERR_SERVER">
    <source></source>
    <translation>照片服务出现问题。稍后会自动重试。</translation>
  </message>
  <message id="MSG_ERR_DOWNLOAD">
    <source></source>
    <translation>部分照片无法保存。请检查下载文件夹是否存在，以及您是否有写入权限。</translation>
  </message>
  <message id="MSG_ERR_UNEXPECTED">
    <source></source>
    <translation>发生了意外问题。如果再次发生，请退出 Downloaderpictora 后重新启动。</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID">
    <source></source>
    <translation>照片服务拒绝了您的登录。请从菜单中选择“登录…”以重新登录。</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID_NO_ANSWER">
    <source></source>
    <translation>照片服务目前没有响应，因此无法检查您的登录。如果您正在登录，请稍后再次从菜单中选择“登录…”；否则会自动重新检查。</translation>
  </message>
  <message id="MSG_ERR_VALIDATION">
    <source></source>
    <translation>您的登录已失效。要重新登录，请从菜单中选择“登录…”。</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NO_ANSWER">
    <source></source>
    <translation>照片服务目前没有响应，因此无法检查您的登录。没有任何损失，稍后会自动重试。</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NOT_ACCEPTED">
    <source></source>
    <translation>浏览器返回的内容不属于在此处开始的登录。请从菜单中选择“登录…”，重新开始登录。</translation>
  </message>
  <message id="MSG_ERR_CLOCK">
    <source></source>
    <translation>此电脑的时钟不正确，照片服务会拒绝时间有误的请求。请正确设置日期和时间，照片随后会自动下载。如果您正在登录，请再次从菜单中选择“登录…”。</translation>
  </message>
  <message id="MSG_NEW_VERSION_RELEASED">
    <source></source>
    <translation>Downloaderpictora 有新版本。请从获取当前版本的地方获取新版本。</translation>
  </message>
</context>
</TS>
