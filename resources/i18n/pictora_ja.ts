<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja" sourcelanguage="en">
<context>
  <name></name>
  <!-- Names -->
  <message id="APP_SHORT_NAME">
    <source></source>
    <translation>Downloaderpictora</translation>
  </message>
  <message id="APP_LONG_NAME">
    <source></source>
    <translation>Downloaderpictora – 写真ダウンロード</translation>
  </message>
  <!-- Start-up -->
  <message id="MSG_FIRST_LAUNCH">
    <source></source>
    <translation>コンピューターと一緒に Downloaderpictora を起動しますか？ 起動しておくと、新しい写真が自動的に届きます。この設定はメニューでいつでも変更できます。</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_START">
    <source></source>
    <translation>一緒に起動</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_LATER">
    <source></source>
    <translation>今はしない</translation>
  </message>
  <message id="MSG_ERR_START">
    <source></source>
    <translation>Downloaderpictora を起動できませんでした。もう一度起動するか、コンピューターを再起動してください。</translation>
  </message>
  <message id="MSG_ERR_MACHINE_ID">
    <source></source>
    <translation>このコンピューターの識別情報を読み取れないため、Downloaderpictora を起動できません。後でもう一度お試しください。</translation>
  </message>
  <message id="MSG_ERR_PROFILE_IN_USE">
    <source></source>
    <translation>Downloaderpictora は別のセッションですでに動作しており、ここからは接続できません。先にそちらで終了してください。</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_OK_MAC">
    <source></source>
    <translation>保存</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CANCEL">
    <source></source>
    <translation>キャンセル</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CLOSE">
    <source></source>
    <translation>閉じる</translation>
  </message>
  <!-- Menu -->
  <message id="MENU_DOWNLOAD">
    <source></source>
    <translation>今すぐダウンロード</translation>
  </message>
  <message id="MENU_DISP_SETTING">
    <source></source>
    <translation>ダウンロードフォルダー…</translation>
  </message>
  <message id="MENU_LOGIN">
    <source></source>
    <translation>ログイン…</translation>
  </message>
  <message id="MENU_LOGOUT">
    <source></source>
    <translation>ログアウト</translation>
  </message>
  <message id="MENU_HELP">
    <source></source>
    <translation>ヘルプ</translation>
  </message>
  <message id="MENU_ABOUT">
    <source></source>
    <translation>Downloaderpictora について</translation>
  </message>
  <message id="MENU_LAUNCH_SETTING">
    <source></source>
    <translation>コンピューターと一緒に起動</translation>
  </message>
  <message id="MENU_EXIT_MAC">
    <source></source>
    <translation>Downloaderpictora を終了</translation>
  </message>
  <!-- Tooltips -->
  <message id="TOOL_TIP_STATUS_NORMAL">
    <source></source>
    <translation>Downloaderpictora: 新しい写真を待っています</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DOWNLOADING">
    <source></source>
    <translation>Downloaderpictora: 写真をダウンロードしています</translation>
  </message>
  <message id="TOOL_TIP_STATUS_OFFLINE">
    <source></source>
    <translation>Downloaderpictora: 写真サービスに接続できません</translation>
  </message>
  <message id="TOOL_TIP_STATUS_MAINTENANCE">
    <source></source>
    <translation>Downloaderpictora: 写真サービスは現在利用できません</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DISK_FULL">
    <source></source>
    <translation>Downloaderpictora: ディスクの空き容量がありません</translation>
  </message>
  <message id="TOOL_TIP_STATUS_ERR_DOWNLOAD">
    <source></source>
    <translation>Downloaderpictora: 保存できなかった写真があります</translation>
  </message>
  <message id="TOOL_TIP_STATUS_UNLINK">
    <source></source>
    <translation>Downloaderpictora: ログインしていません</translation>
  </message>
  <!-- Status view -->
  <message id="STATUS_UP_TO_DATE">
    <source></source>
    <translation>最新の状態です</translation>
  </message>
  <message id="STATUS_NOT_LOOKED_YET">
    <source></source>
    <translation>最初の確認を待っています</translation>
  </message>
  <message id="STATUS_LOOKING">
    <source></source>
    <translation>新しい写真を確認しています…</translation>
  </message>
  <message id="STATUS_FETCHING">
    <source></source>
    <translation>写真をダウンロードしています: %1 / %2</translation>
  </message>
  <message id="STATUS_STILL_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>まだ届いていない写真が %Ln 枚あります</numerusform>
    </translation>
  </message>
  <message id="STATUS_STILL_TO_COME_HINT">
    <source></source>
    <translation>ダウンロードできなかった写真は、自動的に再試行します。</translation>
  </message>
  <message id="STATUS_NOT_LINKED">
    <source></source>
    <translation>ログインしていません</translation>
  </message>
  <message id="STATUS_NOT_LINKED_HINT">
    <source></source>
    <translation>写真を受け取るには、写真サービスにログインしてください。</translation>
  </message>
  <message id="STATUS_LOGIN_NEEDED">
    <source></source>
    <translation>もう一度ログインしてください</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS">
    <source></source>
    <translation>ログインしました</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS_HINT">
    <source></source>
    <translation>写真の保存先を下で確認してください。このウィンドウを閉じると、ダウンロードが始まります。</translation>
  </message>
  <message id="STATUS_OFFLINE">
    <source></source>
    <translation>写真サービスに接続できません</translation>
  </message>
  <message id="STATUS_OFFLINE_HINT">
    <source></source>
    <translation>接続が回復すると、ダウンロードを再開します。</translation>
  </message>
  <message id="STATUS_OFFLINE_UNTIL_HINT">
    <source></source>
    <translation>次の試行: %1、または接続が回復したとき。</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK">
    <source></source>
    <translation>このコンピューターの時計がずれています</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK_HINT">
    <source></source>
    <translation>このコンピューターは %1、写真サービスは %2 を示しています。15 分を超える差があると、サービスはすべてを拒否します。コンピューターの日付と時刻を合わせてください。</translation>
  </message>
  <message id="STATUS_DISK_FULL">
    <source></source>
    <translation>ディスクの空き容量がありません</translation>
  </message>
  <message id="STATUS_NOT_SAVED">
    <source></source>
    <translation>写真を保存できません</translation>
  </message>
  <message id="STATUS_FAILED">
    <source></source>
    <translation>前回の写真の確認に失敗しました</translation>
  </message>
  <message id="STATUS_TODAY" numerus="yes">
    <source></source>
    <translation>
      <numerusform>今日 %Ln 枚</numerusform>
    </translation>
  </message>
  <message id="STATUS_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>未着 %Ln 枚</numerusform>
    </translation>
  </message>
  <message id="STATUS_LAST_LOOK">
    <source></source>
    <translation>前回の確認: %1</translation>
  </message>
  <message id="STATUS_NEXT_LOOK">
    <source></source>
    <translation>次回の確認: %1</translation>
  </message>
  <message id="STATUS_FREE_ROOM">
    <source></source>
    <translation>空き %1</translation>
  </message>
  <message id="STATUS_FOLDER_MISSING">
    <source></source>
    <translation>見つかりません</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER">
    <source></source>
    <translation>開く</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER_NAMED">
    <source></source>
    <translation>フォルダー %1 を開く</translation>
  </message>
  <message id="STATUS_CHOOSE_FOLDER">
    <source></source>
    <translation>フォルダーを選択…</translation>
  </message>
  <message id="STATUS_LAST_PICTURES">
    <source></source>
    <translation>最近の写真</translation>
  </message>
  <message id="STATUS_PICTURE_BUTTON">
    <source></source>
    <translation>この写真のフォルダーを開きます</translation>
  </message>
  <message id="STATUS_NO_PICTURES_YET">
    <source></source>
    <translation>最近届いた写真がここに表示されます。</translation>
  </message>
  <!-- Download folders -->
  <message id="DLG_SETTING_SAVE_FOLDER_TITLE">
    <source></source>
    <translation>写真の保存先</translation>
  </message>
  <message id="DLG_SETTING_FOLDER">
    <source></source>
    <translation>新しい写真のフォルダー(&amp;F):</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_FOLDER">
    <source></source>
    <translation>新しい写真のフォルダーを選択</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_10G_FOLDER">
    <source></source>
    <translation>長期保存（10G）の写真のフォルダーを選択</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_SELECT_MAC">
    <source></source>
    <translation>選択…</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD">
    <source></source>
    <translation>長期保存（10G）の写真とプレビューも次のフォルダーに保存(&amp;L):</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER">
    <source></source>
    <translation>撮影日ごとのフォルダー(&amp;D)</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD_SUPPLEMENT">
    <source></source>
    <translation>：両方のフォルダーに適用（振り分けルールは 1 つ目のみ）</translation>
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
    <translation>日付のフォルダーを作らない</translation>
  </message>
  <message id="DLG_SETTING_SORTING_RULE_NAME">
    <source></source>
    <translation>振り分けルール</translation>
  </message>
  <message id="DLG_SETTING_CREATE_SUBFOLDER">
    <source></source>
    <translation>アカウントの振り分けルールで写真をフォルダーに振り分け(&amp;S)</translation>
  </message>
  <message id="DLG_SETTING_DOWNLOAD_METADATA">
    <source></source>
    <translation>メタデータ付きの写真をダウンロード（ある場合）(&amp;M)</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_ACCESS">
    <source></source>
    <translation>このフォルダーは使用できません。存在しないか、書き込む権限がありません。別のフォルダーを選択するか、先にこのフォルダーを作成してください。</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_SUPPORT">
    <source></source>
    <translation>このフォルダーには写真を保存できません。リムーバブルディスクまたはネットワークディスク上にあるか、システムのフォルダーです。このコンピューターの内蔵ディスクにあるフォルダーを選択してください。</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_TOO_LONG">
    <source></source>
    <translation>このフォルダーのパスは長すぎます。パスがもっと短いフォルダーを選択してください。</translation>
  </message>
  <message id="MSG_ERR_SETTINGS_NOT_SAVED">
    <source></source>
    <translation>設定を保存できませんでした。今の設定は、Downloaderpictora を終了するまでのみ有効です。ディスクに空きがあり、ホームフォルダーに書き込む権限があることを確認してから、もう一度保存してください。</translation>
  </message>
  <!-- About -->
  <message id="DLG_ABOUT_TITLE">
    <source></source>
    <translation>Downloaderpictora について</translation>
  </message>
  <!-- What does not open -->
  <message id="MSG_PAGE_NOT_OPENED">
    <source></source>
    <translation>Web ブラウザーを開けませんでした。このアドレスをコピーして、ブラウザーで開いてください。</translation>
  </message>
  <message id="MSG_FOLDER_NOT_OPENED">
    <source></source>
    <translation>このフォルダーを開けませんでした。移動または削除されたか、フォルダーを表示するプログラムが起動しなかった可能性があります。</translation>
  </message>
  <message id="MSG_ERR_LAUNCH_SETTING">
    <source></source>
    <translation>「コンピューターと一緒に起動」を変更できませんでした。ディスクに空きがあり、ホームフォルダーに書き込む権限があることを確認してから、再試行してください。</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_ADDRESS">
    <source></source>
    <translation>アドレスをコピー</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_PATH">
    <source></source>
    <translation>パスをコピー</translation>
  </message>
  <!-- Results -->
  <message id="MSG_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>新しい写真をダウンロードしました。ここをクリックするとフォルダーが開きます。</translation>
  </message>
  <message id="MSG_10G_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>長期保存の新しい写真をダウンロードしました。ここをクリックするとフォルダーが開きます。</translation>
  </message>
  <message id="MSG_DOWNLOAD_ZERO">
    <source></source>
    <translation>ダウンロードする新しい写真はありません。</translation>
  </message>
  <message id="MSG_INITIAL_ACCESS_COMPLETE">
    <source></source>
    <translation>ログインしました。これから写真をダウンロードします。</translation>
  </message>
  <message id="MSG_ERR_CERTIFICATE">
    <source></source>
    <translation>写真サービスへの安全な接続を確立できませんでした。このコンピューターの日付と時刻が正しいか、ネットワークで安全な接続が許可されているかを確認してください。</translation>
  </message>
  <message id="MSG_ERR_COMMUNICATION">
    <source></source>
    <translation>写真サービスから正しい応答がありませんでした。後で自動的に再試行します。</translation>
  </message>
  <message id="MSG_ERR_DISK_FULL">
    <source></source>
    <translation>ダウンロードフォルダーのあるディスクに空き容量がありません。空き容量を増やすと、ダウンロードは自動的に再開します。</translation>
  </message>
  <message id="MSG_ERR_OFFLINE">
    <source></source>
    <translation>写真サービスに接続できませんでした。インターネット接続を確認してください。後で自動的に再試行します。</translation>
  </message>
  <message id="MSG_ERR_UNLINK">
    <source></source>
    <translation>写真サービスにログインしていません。写真を受け取るには、メニューから「ログイン…」を選択するか、ここをクリックしてください。</translation>
  </message>
  <message id="MSG_ERR_RETRY">
    <source></source>
    <translation>写真サービスが混み合っています。後で自動的に再試行します。</translation>
  </message>
  <message id="MSG_ERR_SERVER">
    <source></source>
    <translation>写真サービスで問題が発生しました。後で自動的に再試行します。</translation>
  </message>
  <message id="MSG_ERR_DOWNLOAD">
    <source></source>
    <translation>保存できなかった写真があります。ダウンロードフォルダーが存在し、書き込む権限があることを確認してください。</translation>
  </message>
  <message id="MSG_ERR_UNEXPECTED">
    <source></source>
    <translation>予期しない問題が発生しました。繰り返し発生する場合は、Downloaderpictora を終了してから、もう一度起動してください。</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID">
    <source></source>
    <translation>写真サービスがログインを拒否しました。メニューから「ログイン…」を選択して、もう一度ログインしてください。</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID_NO_ANSWER">
    <source></source>
    <translation>写真サービスが現在応答していないため、ログインを確認できませんでした。ログインの操作中だった場合は、しばらくしてからメニューの「ログイン…」をもう一度選択してください。それ以外の場合は、自動的に再確認されます。</translation>
  </message>
  <message id="MSG_ERR_VALIDATION">
    <source></source>
    <translation>ログインが無効になりました。もう一度ログインするには、メニューから「ログイン…」を選択してください。</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NO_ANSWER">
    <source></source>
    <translation>写真サービスが現在応答していないため、ログインを確認できませんでした。何も失われていません。後で自動的に再試行します。</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NOT_ACCEPTED">
    <source></source>
    <translation>ブラウザーから戻ってきた情報は、ここで開始したログインのものではありません。メニューから「ログイン…」を選択して、ログインをやり直してください。</translation>
  </message>
  <message id="MSG_ERR_CLOCK">
    <source></source>
    <translation>このコンピューターの時計が正しくありません。写真サービスは時刻の誤った要求を拒否します。日付と時刻を正しく設定すると、写真は自動的に届きます。ログインの操作中だった場合は、メニューから「ログイン…」をもう一度選択してください。</translation>
  </message>
  <message id="MSG_NEW_VERSION_RELEASED">
    <source></source>
    <translation>Downloaderpictora の新しいバージョンがあります。現在のバージョンと同じ場所から入手してください。</translation>
  </message>
</context>
</TS>
