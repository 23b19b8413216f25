<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
  <name></name>
  <!-- Names -->
  <message id="APP_SHORT_NAME">
    <source></source>
    <translation>Downloaderpictora</translation>
  </message>
  <message id="APP_LONG_NAME">
    <source></source>
    <translation>Downloaderpictora – Photo Download</translation>
  </message>
  <!-- Start-up -->
  <message id="MSG_FIRST_LAUNCH">
    <source></source>
    <translation>Should Downloaderpictora start together with the computer? New pictures then arrive by themselves. You can change this in its menu at any time.</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_START">
    <source></source>
    <translation>Start with the Computer</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_LATER">
    <source></source>
    <translation>Not Now</translation>
  </message>
  <message id="MSG_ERR_START">
    <source></source>
    <translation>Downloaderpictora could not start. Try again, or restart the computer.</translation>
  </message>
  <message id="MSG_ERR_MACHINE_ID">
    <source></source>
    <translation>Downloaderpictora cannot start because the identity of this computer cannot be read. Try again later.</translation>
  </message>
  <message id="MSG_ERR_PROFILE_IN_USE">
    <source></source>
    <translation>Downloaderpictora is already running for you in another session and cannot be reached from here. Quit it there first.</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_OK_MAC">
    <source></source>
    <translation>Save</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CANCEL">
    <source></source>
    <translation>Cancel</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CLOSE">
    <source></source>
    <translation>Close</translation>
  </message>
  <!-- Menu -->
  <message id="MENU_DOWNLOAD">
    <source></source>
    <translation>Download Now</translation>
  </message>
  <message id="MENU_DISP_SETTING">
    <source></source>
    <translation>Download Folders…</translation>
  </message>
  <message id="MENU_LOGIN">
    <source></source>
    <translation>Log In…</translation>
  </message>
  <message id="MENU_LOGOUT">
    <source></source>
    <translation>Log Out</translation>
  </message>
  <message id="MENU_HELP">
    <source></source>
    <translation>Help</translation>
  </message>
  <message id="MENU_ABOUT">
    <source></source>
    <translation>About Downloaderpictora</translation>
  </message>
  <message id="MENU_LAUNCH_SETTING">
    <source></source>
    <translation>Start with the Computer</translation>
  </message>
  <message id="MENU_EXIT_MAC">
    <source></source>
    <translation>Quit Downloaderpictora</translation>
  </message>
  <!-- Tooltips -->
  <message id="TOOL_TIP_STATUS_NORMAL">
    <source></source>
    <translation>Downloaderpictora: waiting for new pictures</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DOWNLOADING">
    <source></source>
    <translation>Downloaderpictora: downloading pictures</translation>
  </message>
  <message id="TOOL_TIP_STATUS_OFFLINE">
    <source></source>
    <translation>Downloaderpictora: no connection to the photo service</translation>
  </message>
  <message id="TOOL_TIP_STATUS_MAINTENANCE">
    <source></source>
    <translation>Downloaderpictora: the photo service cannot be used at the moment</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DISK_FULL">
    <source></source>
    <translation>Downloaderpictora: the disk is full</translation>
  </message>
  <message id="TOOL_TIP_STATUS_ERR_DOWNLOAD">
    <source></source>
    <translation>Downloaderpictora: some pictures could not be saved</translation>
  </message>
  <message id="TOOL_TIP_STATUS_UNLINK">
    <source></source>
    <translation>Downloaderpictora: not logged in</translation>
  </message>
  <!-- Status view -->
  <message id="STATUS_UP_TO_DATE">
    <source></source>
    <translation>Up to date</translation>
  </message>
  <message id="STATUS_NOT_LOOKED_YET">
    <source></source>
    <translation>Waiting for the first check</translation>
  </message>
  <message id="STATUS_LOOKING">
    <source></source>
    <translation>Checking for new pictures…</translation>
  </message>
  <message id="STATUS_FETCHING">
    <source></source>
    <translation>Downloading pictures: %1 of %2</translation>
  </message>
  <message id="STATUS_STILL_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln picture is still to come</numerusform>
      <numerusform>%Ln pictures are still to come</numerusform>
    </translation>
  </message>
  <message id="STATUS_STILL_TO_COME_HINT">
    <source></source>
    <translation>Pictures that could not be downloaded are tried again automatically.</translation>
  </message>
  <message id="STATUS_NOT_LINKED">
    <source></source>
    <translation>Not logged in</translation>
  </message>
  <message id="STATUS_NOT_LINKED_HINT">
    <source></source>
    <translation>Log in to the photo service to receive your pictures.</translation>
  </message>
  <message id="STATUS_LOGIN_NEEDED">
    <source></source>
    <translation>Log in again</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS">
    <source></source>
    <translation>You are logged in</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS_HINT">
    <source></source>
    <translation>See below where your pictures will be saved. The download begins when you close this window.</translation>
  </message>
  <message id="STATUS_OFFLINE">
    <source></source>
    <translation>No connection to the photo service</translation>
  </message>
  <message id="STATUS_OFFLINE_HINT">
    <source></source>
    <translation>The download goes on when the connection comes back.</translation>
  </message>
  <message id="STATUS_OFFLINE_UNTIL_HINT">
    <source></source>
    <translation>Next try: %1, or when the connection comes back.</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK">
    <source></source>
    <translation>The clock of this computer is wrong</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK_HINT">
    <source></source>
    <translation>The clock of this computer says %1, the photo service says %2. As long as they differ by more than 15 minutes, the service refuses everything. Set the date and time of this computer.</translation>
  </message>
  <message id="STATUS_DISK_FULL">
    <source></source>
    <translation>The disk is full</translation>
  </message>
  <message id="STATUS_NOT_SAVED">
    <source></source>
    <translation>Pictures cannot be saved</translation>
  </message>
  <message id="STATUS_FAILED">
    <source></source>
    <translation>The last check for pictures failed</translation>
  </message>
  <message id="STATUS_TODAY" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln picture today</numerusform>
      <numerusform>%Ln pictures today</numerusform>
    </translation>
  </message>
  <message id="STATUS_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln still to come</numerusform>
      <numerusform>%Ln still to come</numerusform>
    </translation>
  </message>
  <message id="STATUS_LAST_LOOK">
    <source></source>
    <translation>last check: %1</translation>
  </message>
  <message id="STATUS_NEXT_LOOK">
    <source></source>
    <translation>next check: %1</translation>
  </message>
  <message id="STATUS_FREE_ROOM">
    <source></source>
    <translation>%1 free</translation>
  </message>
  <message id="STATUS_FOLDER_MISSING">
    <source></source>
    <translation>not found</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER">
    <source></source>
    <translation>Open</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER_NAMED">
    <source></source>
    <translation>Open the folder %1</translation>
  </message>
  <message id="STATUS_CHOOSE_FOLDER">
    <source></source>
    <translation>Choose a Folder…</translation>
  </message>
  <message id="STATUS_LAST_PICTURES">
    <source></source>
    <translation>Last pictures</translation>
  </message>
  <message id="STATUS_PICTURE_BUTTON">
    <source></source>
    <translation>Opens the folder of this picture</translation>
  </message>
  <message id="STATUS_NO_PICTURES_YET">
    <source></source>
    <translation>The last pictures that came appear here.</translation>
  </message>
  <!-- Download folders -->
  <message id="DLG_SETTING_SAVE_FOLDER_TITLE">
    <source></source>
    <translation>Where to Save Your Pictures</translation>
  </message>
  <message id="DLG_SETTING_FOLDER">
    <source></source>
    <translation>&amp;Folder for new pictures:</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_FOLDER">
    <source></source>
    <translation>Choose the Folder for New Pictures</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_10G_FOLDER">
    <source></source>
    <translation>Choose the Folder for Pictures from Long-Term Storage (10G)</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_SELECT_MAC">
    <source></source>
    <translation>Choose…</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD">
    <source></source>
    <translation>Also download pictures from &amp;long-term storage (10G) and previews to this folder:</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER">
    <source></source>
    <translation>Folders by the &amp;date a picture was taken</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD_SUPPLEMENT">
    <source></source>
    <translation> (in both folders; sorting rules in the first one only)</translation>
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
    <translation>No folders by date</translation>
  </message>
  <message id="DLG_SETTING_SORTING_RULE_NAME">
    <source></source>
    <translation>Sorting rule</translation>
  </message>
  <message id="DLG_SETTING_CREATE_SUBFOLDER">
    <source></source>
    <translation>&amp;Sort pictures into folders by the sorting rules of your account</translation>
  </message>
  <message id="DLG_SETTING_DOWNLOAD_METADATA">
    <source></source>
    <translation>Download pictures with their &amp;metadata, if available</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_ACCESS">
    <source></source>
    <translation>This folder cannot be used: it is not there, or you may not write to it. Choose another folder, or create this one first.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_SUPPORT">
    <source></source>
    <translation>Pictures cannot be saved in this folder, because it is on a removable or network disk or belongs to the system. Choose a folder on a built-in disk of this computer.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_TOO_LONG">
    <source></source>
    <translation>The path of this folder is too long. Choose a folder with a shorter path.</translation>
  </message>
  <message id="MSG_ERR_SETTINGS_NOT_SAVED">
    <source></source>
    <translation>Your settings could not be saved and count only until you quit Downloaderpictora. Check that the disk is not full and that you may write to your home folder, then save them once more.</translation>
  </message>
  <!-- About -->
  <message id="DLG_ABOUT_TITLE">
    <source></source>
    <translation>About Downloaderpictora</translation>
  </message>
  <!-- What does not open -->
  <message id="MSG_PAGE_NOT_OPENED">
    <source></source>
    <translation>The web browser did not open. Copy this address and open it in a browser yourself.</translation>
  </message>
  <message id="MSG_FOLDER_NOT_OPENED">
    <source></source>
    <translation>This folder could not be opened. It may have been moved or deleted, or the program that shows folders did not start.</translation>
  </message>
  <message id="MSG_ERR_LAUNCH_SETTING">
    <source></source>
    <translation>“Start with the Computer” could not be changed. Check that the disk is not full and that you may write to your home folder, then try again.</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_ADDRESS">
    <source></source>
    <translation>Copy Address</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_PATH">
    <source></source>
    <translation>Copy Path</translation>
  </message>
  <!-- Results -->
  <message id="MSG_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>New pictures have been downloaded. Click here to open the folder.</translation>
  </message>
  <message id="MSG_10G_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>New pictures from long-term storage have been downloaded. Click here to open the folder.</translation>
  </message>
  <message id="MSG_DOWNLOAD_ZERO">
    <source></source>
    <translation>There are no new pictures to download.</translation>
  </message>
  <message id="MSG_INITIAL_ACCESS_COMPLETE">
    <source></source>
    <translation>You are logged in. Your pictures will now be downloaded.</translation>
  </message>
  <message id="MSG_ERR_CERTIFICATE">
    <source></source>
    <translation>No secure connection to the photo service could be made. Check that the date and time of this computer are right and that your network allows secure connections.</translation>
  </message>
  <message id="MSG_ERR_COMMUNICATION">
    <source></source>
    <translation>The photo service sent an answer that could not be understood. Downloaderpictora will try again by itself.</translation>
  </message>
  <message id="MSG_ERR_DISK_FULL">
    <source></source>
    <translation>The disk of your download folder is full. Free some space; the download will then go on by itself.</translation>
  </message>
  <message id="MSG_ERR_OFFLINE">
    <source></source>
    <translation>The photo service could not be reached. Check your internet connection; Downloaderpictora will try again by itself.</translation>
  </message>
  <message id="MSG_ERR_UNLINK">
    <source></source>
    <translation>You are not logged in to the photo service. Choose “Log In…” from the menu, or click here, to receive your pictures.</translation>
  </message>
  <message id="MSG_ERR_RETRY">
    <source></source>
    <translation>The photo service is busy. Downloaderpictora will try again by itself.</translation>
  </message>
  <message id="MSG_ERR_SERVER">
    <source></source>
    <translation>The photo service reported a problem. Downloaderpictora will try again by itself.</translation>
  </message>
  <message id="MSG_ERR_DOWNLOAD">
    <source></source>
    <translation>Some pictures could not be saved. Check that your download folders exist and that you may write to them.</translation>
  </message>
  <message id="MSG_ERR_UNEXPECTED">
    <source></source>
    <translation>Something unexpected went wrong. If it happens again, quit Downloaderpictora and start it again.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID">
    <source></source>
    <translation>The photo service refused your login. Choose “Log In…” from the menu to log in again.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID_NO_ANSWER">
    <source></source>
    <translation>The photo service does not answer at the moment, so your login could not be checked. If you were just logging in, choose “Log In…” from the menu once more later; otherwise it is checked again by itself.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION">
    <source></source>
    <translation>Your login is no longer valid. Choose “Log In…” from the menu to log in again.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NO_ANSWER">
    <source></source>
    <translation>The photo service does not answer at the moment, so your login could not be checked. Nothing is lost: Downloaderpictora will try again by itself.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NOT_ACCEPTED">
    <source></source>
    <translation>What came back from your browser does not belong to a login that was started here. Choose “Log In…” from the menu to start the login once more.</translation>
  </message>
  <message id="MSG_ERR_CLOCK">
    <source></source>
    <translation>The clock of this computer is wrong, and the photo service refuses what comes with a wrong time. Set the date and time; your pictures then come by themselves. If you were just logging in, choose “Log In…” from the menu once more.</translation>
  </message>
  <message id="MSG_NEW_VERSION_RELEASED">
    <source></source>
    <translation>A new version of Downloaderpictora is available. Get it where you got this one.</translation>
  </message>
</context>
</TS>
