<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko" sourcelanguage="en">
<context>
  <name></name>
  <!-- Names -->
  <message id="APP_SHORT_NAME">
    <source></source>
    <translation>Downloaderpictora</translation>
  </message>
  <message id="APP_LONG_NAME">
    <source></source>
    <translation>Downloaderpictora – 사진 다운로드</translation>
  </message>
  <!-- Start-up -->
  <message id="MSG_FIRST_LAUNCH">
    <source></source>
    <translation>컴퓨터를 켤 때 Downloaderpictora도 시작할까요? 시작해 두면 새 사진이 자동으로 도착합니다. 이 설정은 메뉴에서 언제든지 바꿀 수 있습니다.</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_START">
    <source></source>
    <translation>시작</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_LATER">
    <source></source>
    <translation>나중에</translation>
  </message>
  <message id="MSG_ERR_START">
    <source></source>
    <translation>Downloaderpictora를 시작하지 못했습니다. 다시 시도하거나 컴퓨터를 다시 시작하세요.</translation>
  </message>
  <message id="MSG_ERR_MACHINE_ID">
    <source></source>
    <translation>이 컴퓨터의 식별 정보를 읽을 수 없어 Downloaderpictora를 시작할 수 없습니다. 나중에 다시 시도하세요.</translation>
  </message>
  <message id="MSG_ERR_PROFILE_IN_USE">
    <source></source>
    <translation>Downloaderpictora가 다른 세션에서 이미 실행 중이며 여기에서는 연결할 수 없습니다. 먼저 그곳에서 종료하세요.</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_OK_MAC">
    <source></source>
    <translation>저장</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CANCEL">
    <source></source>
    <translation>취소</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CLOSE">
    <source></source>
    <translation>닫기</translation>
  </message>
  <!-- Menu -->
  <message id="MENU_DOWNLOAD">
    <source></source>
    <translation>지금 다운로드</translation>
  </message>
  <message id="MENU_DISP_SETTING">
    <source></source>
    <translation>다운로드 폴더…</translation>
  </message>
  <message id="MENU_LOGIN">
    <source></source>
    <translation>로그인…</translation>
  </message>
  <message id="MENU_LOGOUT">
    <source></source>
    <translation>로그아웃</translation>
  </message>
  <message id="MENU_HELP">
    <source></source>
    <translation>도움말</translation>
  </message>
  <message id="MENU_ABOUT">
    <source></source>
    <translation>Downloaderpictora 정보</translation>
  </message>
  <message id="MENU_LAUNCH_SETTING">
    <source></source>
    <translation>컴퓨터를 켤 때 시작</translation>
  </message>
  <message id="MENU_EXIT_MAC">
    <source></source>
    <translation>Downloaderpictora 종료</translation>
  </message>
  <!-- Tooltips -->
  <message id="TOOL_TIP_STATUS_NORMAL">
    <source></source>
    <translation>Downloaderpictora: 새 사진을 기다리는 중</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DOWNLOADING">
    <source></source>
    <translation>Downloaderpictora: 사진을 다운로드하는 중</translation>
  </message>
  <message id="TOOL_TIP_STATUS_OFFLINE">
    <source></source>
    <translation>Downloaderpictora: 사진 서비스에 연결되지 않음</translation>
  </message>
  <message id="TOOL_TIP_STATUS_MAINTENANCE">
    <source></source>
    <translation>Downloaderpictora: 현재 사진 서비스를 사용할 수 없음</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DISK_FULL">
    <source></source>
    <translation>Downloaderpictora: 디스크가 가득 참</translation>
  </message>
  <message id="TOOL_TIP_STATUS_ERR_DOWNLOAD">
    <source></source>
    <translation>Downloaderpictora: 일부 사진을 저장하지 못함</translation>
  </message>
  <message id="TOOL_TIP_STATUS_UNLINK">
    <source></source>
    <translation>Downloaderpictora: 로그인하지 않음</translation>
  </message>
  <!-- Status view -->
  <message id="STATUS_UP_TO_DATE">
    <source></source>
    <translation>최신 상태입니다</translation>
  </message>
  <message id="STATUS_NOT_LOOKED_YET">
    <source></source>
    <translation>첫 확인을 기다리는 중</translation>
  </message>
  <message id="STATUS_LOOKING">
    <source></source>
    <translation>새 사진을 확인하는 중…</translation>
  </message>
  <message id="STATUS_FETCHING">
    <source></source>
    <translation>사진을 다운로드하는 중: %1/%2</translation>
  </message>
  <message id="STATUS_STILL_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>아직 받지 못한 사진 %Ln장</numerusform>
    </translation>
  </message>
  <message id="STATUS_STILL_TO_COME_HINT">
    <source></source>
    <translation>다운로드하지 못한 사진은 자동으로 다시 시도합니다.</translation>
  </message>
  <message id="STATUS_NOT_LINKED">
    <source></source>
    <translation>로그인하지 않음</translation>
  </message>
  <message id="STATUS_NOT_LINKED_HINT">
    <source></source>
    <translation>사진을 받으려면 사진 서비스에 로그인하세요.</translation>
  </message>
  <message id="STATUS_LOGIN_NEEDED">
    <source></source>
    <translation>다시 로그인하세요</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS">
    <source></source>
    <translation>로그인했습니다</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS_HINT">
    <source></source>
    <translation>사진이 저장될 위치를 아래에서 확인하세요. 이 창을 닫으면 다운로드가 시작됩니다.</translation>
  </message>
  <message id="STATUS_OFFLINE">
    <source></source>
    <translation>사진 서비스에 연결되지 않음</translation>
  </message>
  <message id="STATUS_OFFLINE_HINT">
    <source></source>
    <translation>연결이 복구되면 다운로드를 계속합니다.</translation>
  </message>
  <message id="STATUS_OFFLINE_UNTIL_HINT">
    <source></source>
    <translation>다음 시도: %1 또는 연결이 복구될 때</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK">
    <source></source>
    <translation>이 컴퓨터의 시계가 맞지 않습니다</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK_HINT">
    <source></source>
    <translation>이 컴퓨터는 %1, 사진 서비스는 %2입니다. 15분 넘게 차이가 나면 서비스가 모든 요청을 거부합니다. 컴퓨터의 날짜와 시간을 맞추세요.</translation>
  </message>
  <message id="STATUS_DISK_FULL">
    <source></source>
    <translation>디스크가 가득 참</translation>
  </message>
  <message id="STATUS_NOT_SAVED">
    <source></source>
    <translation>사진을 저장할 수 없음</translation>
  </message>
  <message id="STATUS_FAILED">
    <source></source>
    <translation>마지막 사진 확인에 실패했습니다</translation>
  </message>
  <message id="STATUS_TODAY" numerus="yes">
    <source></source>
    <translation>
      <numerusform>오늘 %Ln장</numerusform>
    </translation>
  </message>
  <message id="STATUS_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>받지 못한 사진 %Ln장</numerusform>
    </translation>
  </message>
  <message id="STATUS_LAST_LOOK">
    <source></source>
    <translation>마지막 확인: %1</translation>
  </message>
  <message id="STATUS_NEXT_LOOK">
    <source></source>
    <translation>다음 확인: %1</translation>
  </message>
  <message id="STATUS_FREE_ROOM">
    <source></source>
    <translation>%1 사용 가능</translation>
  </message>
  <message id="STATUS_FOLDER_MISSING">
    <source></source>
    <translation>찾을 수 없음</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER">
    <source></source>
    <translation>열기</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER_NAMED">
    <source></source>
    <translation>%1 폴더 열기</translation>
  </message>
  <message id="STATUS_CHOOSE_FOLDER">
    <source></source>
    <translation>폴더 선택…</translation>
  </message>
  <message id="STATUS_LAST_PICTURES">
    <source></source>
    <translation>최근 사진</translation>
  </message>
  <message id="STATUS_PICTURE_BUTTON">
    <source></source>
    <translation>이 사진의 폴더를 엽니다</translation>
  </message>
  <message id="STATUS_NO_PICTURES_YET">
    <source></source>
    <translation>최근에 받은 사진이 여기에 표시됩니다.</translation>
  </message>
  <!-- Download folders -->
  <message id="DLG_SETTING_SAVE_FOLDER_TITLE">
    <source></source>
    <translation>사진 저장 위치</translation>
  </message>
  <message id="DLG_SETTING_FOLDER">
    <source></source>
    <translation>새 사진 폴더(&amp;F):</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_FOLDER">
    <source></source>
    <translation>새 사진 폴더 선택</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_10G_FOLDER">
    <source></source>
    <translation>장기 보관(10G) 사진 폴더 선택</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_SELECT_MAC">
    <source></source>
    <translation>선택…</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD">
    <source></source>
    <translation>장기 보관(10G) 사진과 미리 보기도 다음 폴더에 다운로드(&amp;L):</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER">
    <source></source>
    <translation>촬영 날짜별 폴더(&amp;D)</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD_SUPPLEMENT">
    <source></source>
    <translation>: 두 폴더에 모두 적용(분류 규칙은 첫 번째 폴더만)</translation>
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
    <translation>날짜별 폴더 없음</translation>
  </message>
  <message id="DLG_SETTING_SORTING_RULE_NAME">
    <source></source>
    <translation>분류 규칙</translation>
  </message>
  <message id="DLG_SETTING_CREATE_SUBFOLDER">
    <source></source>
    <translation>계정의 분류 규칙에 따라 사진을 폴더로 분류(&amp;S)</translation>
  </message>
  <message id="DLG_SETTING_DOWNLOAD_METADATA">
    <source></source>
    <translation>가능하면 메타데이터가 포함된 사진을 다운로드(&amp;M)</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_ACCESS">
    <source></source>
    <translation>이 폴더를 사용할 수 없습니다. 폴더가 없거나 쓰기 권한이 없습니다. 다른 폴더를 선택하거나 먼저 이 폴더를 만드세요.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_SUPPORT">
    <source></source>
    <translation>이 폴더에는 사진을 저장할 수 없습니다. 이동식 디스크나 네트워크 디스크에 있거나 시스템에 속한 폴더입니다. 이 컴퓨터의 내장 디스크에 있는 폴더를 선택하세요.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_TOO_LONG">
    <source></source>
    <translation>이 폴더의 경로가 너무 깁니다. 경로가 더 짧은 폴더를 선택하세요.</translation>
  </message>
  <message id="MSG_ERR_SETTINGS_NOT_SAVED">
    <source></source>
    <translation>설정을 저장하지 못했습니다. 지금 설정은 Downloaderpictora를 종료할 때까지만 적용됩니다. 디스크가 가득 차지 않았는지, 홈 폴더에 쓰기 권한이 있는지 확인한 다음 다시 저장하세요.</translation>
  </message>
  <!-- About -->
  <message id="DLG_ABOUT_TITLE">
    <source></source>
    <translation>Downloaderpictora 정보</translation>
  </message>
  <!-- What does not open -->
  <message id="MSG_PAGE_NOT_OPENED">
    <source></source>
    <translation>웹 브라우저를 열지 못했습니다. 이 주소를 복사하여 브라우저에서 직접 여세요.</translation>
  </message>
  <message id="MSG_FOLDER_NOT_OPENED">
    <source></source>
    <translation>이 폴더를 열지 못했습니다. 폴더가 이동 또는 삭제되었거나 폴더를 표시하는 프로그램이 시작되지 않았을 수 있습니다.</translation>
  </message>
  <message id="MSG_ERR_LAUNCH_SETTING">
    <source></source>
    <translation>‘컴퓨터를 켤 때 시작’을 바꾸지 못했습니다. 디스크가 가득 차지 않았는지, 홈 폴더에 쓰기 권한이 있는지 확인한 다음 다시 시도하세요.</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_ADDRESS">
    <source></source>
    <translation>주소 복사</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_PATH">
    <source></source>
    <translation>경로 복사</translation>
  </message>
  <!-- Results -->
  <message id="MSG_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>새 사진을 다운로드했습니다. 폴더를 열려면 여기를 클릭하세요.</translation>
  </message>
  <message id="MSG_10G_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>장기 보관된 새 사진을 다운로드했습니다. 폴더를 열려면 여기를 클릭하세요.</translation>
  </message>
  <message id="MSG_DOWNLOAD_ZERO">
    <source></source>
    <translation>다운로드할 새 사진이 없습니다.</translation>
  </message>
  <message id="MSG_INITIAL_ACCESS_COMPLETE">
    <source></source>
    <translation>로그인했습니다. 이제 사진을 다운로드합니다.</translation>
  </message>
  <message id="MSG_ERR_CERTIFICATE">
    <source></source>
    <translation>사진 서비스와 보안 연결을 설정하지 못했습니다. 이 컴퓨터의 날짜와 시간이 올바른지, 네트워크에서 보안 연결을 허용하는지 확인하세요.</translation>
  </message>
  <message id="MSG_ERR_COMMUNICATION">
    <source></source>
    <translation>사진 서비스에서 올바른 응답을 받지 못했습니다. 나중에 자동으로 다시 시도합니다.</translation>
  </message>
  <message id="MSG_ERR_DISK_FULL">
    <source></source>
    <translation>다운로드 폴더가 있는 디스크가 가득 찼습니다. 공간을 확보하면 다운로드가 자동으로 계속됩니다.</translation>
  </message>
  <message id="MSG_ERR_OFFLINE">
    <source></source>
    <translation>사진 서비스에 연결하지 못했습니다. 인터넷 연결을 확인하세요. 나중에 자동으로 다시 시도합니다.</translation>
  </message>
  <message id="MSG_ERR_UNLINK">
    <source></source>
    <translation>사진 서비스에 로그인하지 않았습니다. 사진을 받으려면 메뉴에서 ‘로그인…’을 선택하거나 여기를 클릭하세요.</translation>
  </message>
  <message id="MSG_ERR_RETRY">
    <source></source>
    <translation>사진 서비스가 혼잡합니다. 나중에 자동으로 다시 시도합니다.</translation>
  </message>
  <message id="MSG_ERR_SERVER">
    <source></source>
    <translation>사진 서비스에 문제가 발생했습니다. 나중에 자동으로 다시 시도합니다.</translation>
  </message>
  <message id="MSG_ERR_DOWNLOAD">
    <source></source>
    <translation>일부 사진을 저장하지 못했습니다. 다운로드 폴더가 있는지, 쓰기 권한이 있는지 확인하세요.</translation>
  </message>
  <message id="MSG_ERR_UNEXPECTED">
    <source></source>
    <translation>예기치 않은 문제가 발생했습니다. 문제가 다시 발생하면 Downloaderpictora를 종료한 후 다시 시작하세요.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID">
    <source></source>
    <translation>사진 서비스에서 로그인을 거부했습니다. 다시 로그인하려면 메뉴에서 ‘로그인…’을 선택하세요.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID_NO_ANSWER">
    <source></source>
    <translation>현재 사진 서비스가 응답하지 않아 로그인을 확인하지 못했습니다. 로그인하던 중이었다면 나중에 메뉴에서 ‘로그인…’을 다시 선택하세요. 그렇지 않다면 자동으로 다시 확인합니다.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION">
    <source></source>
    <translation>로그인이 더 이상 유효하지 않습니다. 다시 로그인하려면 메뉴에서 ‘로그인…’을 선택하세요.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NO_ANSWER">
    <source></source>
    <translation>현재 사진 서비스가 응답하지 않아 로그인을 확인하지 못했습니다. 잃은 것은 없으며 자동으로 다시 시도합니다.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NOT_ACCEPTED">
    <source></source>
    <translation>브라우저에서 돌아온 정보가 여기에서 시작한 로그인의 것이 아닙니다. 로그인을 다시 시작하려면 메뉴에서 ‘로그인…’을 선택하세요.</translation>
  </message>
  <message id="MSG_ERR_CLOCK">
    <source></source>
    <translation>이 컴퓨터의 시계가 맞지 않으며, 사진 서비스는 시간이 틀린 요청을 거부합니다. 날짜와 시간을 올바르게 설정하면 사진이 자동으로 도착합니다. 로그인하던 중이었다면 메뉴에서 ‘로그인…’을 다시 선택하세요.</translation>
  </message>
  <message id="MSG_NEW_VERSION_RELEASED">
    <source></source>
    <translation>Downloaderpictora의 새 버전이 있습니다. 현재 버전을 받은 곳에서 새 버전을 받으세요.</translation>
  </message>
</context>
</TS>
