<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
  <name></name>
  <!-- Names -->
  <message id="APP_SHORT_NAME">
    <source></source>
    <translation>Downloaderpictora</translation>
  </message>
  <message id="APP_LONG_NAME">
    <source></source>
    <translation>Downloaderpictora – Foto-Download</translation>
  </message>
  <!-- Start-up -->
  <message id="MSG_FIRST_LAUNCH">
    <source></source>
    <translation>Soll Downloaderpictora zusammen mit dem Computer starten? Dann kommen neue Fotos von selbst an. Sie können das jederzeit im Menü ändern.</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_START">
    <source></source>
    <translation>Mit dem Computer starten</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_LATER">
    <source></source>
    <translation>Jetzt nicht</translation>
  </message>
  <message id="MSG_ERR_START">
    <source></source>
    <translation>Downloaderpictora konnte nicht gestartet werden. Versuchen Sie es erneut oder starten Sie den Computer neu.</translation>
  </message>
  <message id="MSG_ERR_MACHINE_ID">
    <source></source>
    <translation>Downloaderpictora kann nicht starten, weil sich die Kennung dieses Computers nicht lesen lässt. Versuchen Sie es später erneut.</translation>
  </message>
  <message id="MSG_ERR_PROFILE_IN_USE">
    <source></source>
    <translation>Downloaderpictora läuft für Sie schon in einer anderen Sitzung und ist von hier aus nicht erreichbar. Beenden Sie es zuerst dort.</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_OK_MAC">
    <source></source>
    <translation>Speichern</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CANCEL">
    <source></source>
    <translation>Abbrechen</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CLOSE">
    <source></source>
    <translation>Schließen</translation>
  </message>
  <!-- Menu -->
  <message id="MENU_DOWNLOAD">
    <source></source>
    <translation>Jetzt herunterladen</translation>
  </message>
  <message id="MENU_DISP_SETTING">
    <source></source>
    <translation>Download-Ordner…</translation>
  </message>
  <message id="MENU_LOGIN">
    <source></source>
    <translation>Anmelden…</translation>
  </message>
  <message id="MENU_LOGOUT">
    <source></source>
    <translation>Abmelden</translation>
  </message>
  <message id="MENU_HELP">
    <source></source>
    <translation>Hilfe</translation>
  </message>
  <message id="MENU_ABOUT">
    <source></source>
    <translation>Über Downloaderpictora</translation>
  </message>
  <message id="MENU_LAUNCH_SETTING">
    <source></source>
    <translation>Mit dem Computer starten</translation>
  </message>
  <message id="MENU_EXIT_MAC">
    <source></source>
    <translation>Downloaderpictora beenden</translation>
  </message>
  <!-- Tooltips -->
  <message id="TOOL_TIP_STATUS_NORMAL">
    <source></source>
    <translation>Downloaderpictora: wartet auf neue Fotos</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DOWNLOADING">
    <source></source>
    <translation>Downloaderpictora: lädt Fotos herunter</translation>
  </message>
  <message id="TOOL_TIP_STATUS_OFFLINE">
    <source></source>
    <translation>Downloaderpictora: keine Verbindung zum Fotodienst</translation>
  </message>
  <message id="TOOL_TIP_STATUS_MAINTENANCE">
    <source></source>
    <translation>Downloaderpictora: der Fotodienst ist zurzeit nicht verfügbar</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DISK_FULL">
    <source></source>
    <translation>Downloaderpictora: der Datenträger ist voll</translation>
  </message>
  <message id="TOOL_TIP_STATUS_ERR_DOWNLOAD">
    <source></source>
    <translation>Downloaderpictora: einige Fotos konnten nicht gespeichert werden</translation>
  </message>
  <message id="TOOL_TIP_STATUS_UNLINK">
    <source></source>
    <translation>Downloaderpictora: nicht angemeldet</translation>
  </message>
  <!-- Status view -->
  <message id="STATUS_UP_TO_DATE">
    <source></source>
    <translation>Alles aktuell</translation>
  </message>
  <message id="STATUS_NOT_LOOKED_YET">
    <source></source>
    <translation>Wartet auf die erste Suche</translation>
  </message>
  <message id="STATUS_LOOKING">
    <source></source>
    <translation>Sucht nach neuen Fotos…</translation>
  </message>
  <message id="STATUS_FETCHING">
    <source></source>
    <translation>Lädt Fotos herunter: %1 von %2</translation>
  </message>
  <message id="STATUS_STILL_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln Foto steht noch aus</numerusform>
      <numerusform>%Ln Fotos stehen noch aus</numerusform>
    </translation>
  </message>
  <message id="STATUS_STILL_TO_COME_HINT">
    <source></source>
    <translation>Downloaderpictora versucht von selbst erneut, die fehlenden Fotos herunterzuladen.</translation>
  </message>
  <message id="STATUS_NOT_LINKED">
    <source></source>
    <translation>Nicht angemeldet</translation>
  </message>
  <message id="STATUS_NOT_LINKED_HINT">
    <source></source>
    <translation>Melden Sie sich beim Fotodienst an, um Ihre Fotos zu erhalten.</translation>
  </message>
  <message id="STATUS_LOGIN_NEEDED">
    <source></source>
    <translation>Melden Sie sich erneut an</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS">
    <source></source>
    <translation>Sie sind angemeldet</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS_HINT">
    <source></source>
    <translation>Sehen Sie unten, wo Ihre Fotos gespeichert werden. Der Download beginnt, wenn Sie dieses Fenster schließen.</translation>
  </message>
  <message id="STATUS_OFFLINE">
    <source></source>
    <translation>Keine Verbindung zum Fotodienst</translation>
  </message>
  <message id="STATUS_OFFLINE_HINT">
    <source></source>
    <translation>Der Download geht weiter, sobald die Verbindung wieder da ist.</translation>
  </message>
  <message id="STATUS_OFFLINE_UNTIL_HINT">
    <source></source>
    <translation>Nächster Versuch: %1, oder sobald die Verbindung wieder da ist.</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK">
    <source></source>
    <translation>Die Uhr dieses Computers geht falsch</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK_HINT">
    <source></source>
    <translation>Die Uhr dieses Computers zeigt %1, die des Fotodienstes %2. Solange sich beide um mehr als 15 Minuten unterscheiden, lehnt der Dienst alles ab. Stellen Sie Datum und Uhrzeit dieses Computers.</translation>
  </message>
  <message id="STATUS_DISK_FULL">
    <source></source>
    <translation>Der Datenträger ist voll</translation>
  </message>
  <message id="STATUS_NOT_SAVED">
    <source></source>
    <translation>Fotos können nicht gespeichert werden</translation>
  </message>
  <message id="STATUS_FAILED">
    <source></source>
    <translation>Die letzte Suche nach Fotos ist fehlgeschlagen</translation>
  </message>
  <message id="STATUS_TODAY" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln Foto heute</numerusform>
      <numerusform>%Ln Fotos heute</numerusform>
    </translation>
  </message>
  <message id="STATUS_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln steht noch aus</numerusform>
      <numerusform>%Ln stehen noch aus</numerusform>
    </translation>
  </message>
  <message id="STATUS_LAST_LOOK">
    <source></source>
    <translation>letzte Suche: %1</translation>
  </message>
  <message id="STATUS_NEXT_LOOK">
    <source></source>
    <translation>nächste Suche: %1</translation>
  </message>
  <message id="STATUS_FREE_ROOM">
    <source></source>
    <translation>%1 frei</translation>
  </message>
  <message id="STATUS_FOLDER_MISSING">
    <source></source>
    <translation>nicht gefunden</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER">
    <source></source>
    <translation>Öffnen</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER_NAMED">
    <source></source>
    <translation>Ordner %1 öffnen</translation>
  </message>
  <message id="STATUS_CHOOSE_FOLDER">
    <source></source>
    <translation>Ordner auswählen…</translation>
  </message>
  <message id="STATUS_LAST_PICTURES">
    <source></source>
    <translation>Letzte Fotos</translation>
  </message>
  <message id="STATUS_PICTURE_BUTTON">
    <source></source>
    <translation>Öffnet den Ordner dieses Fotos</translation>
  </message>
  <message id="STATUS_NO_PICTURES_YET">
    <source></source>
    <translation>Hier erscheinen die zuletzt angekommenen Fotos.</translation>
  </message>
  <!-- Download folders -->
  <message id="DLG_SETTING_SAVE_FOLDER_TITLE">
    <source></source>
    <translation>Speicherort Ihrer Fotos</translation>
  </message>
  <message id="DLG_SETTING_FOLDER">
    <source></source>
    <translation>&amp;Ordner für neue Fotos:</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_FOLDER">
    <source></source>
    <translation>Ordner für neue Fotos auswählen</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_10G_FOLDER">
    <source></source>
    <translation>Ordner für Fotos aus dem Langzeitspeicher (10G) auswählen</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_SELECT_MAC">
    <source></source>
    <translation>Auswählen…</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD">
    <source></source>
    <translation>Auch Fotos aus dem &amp;Langzeitspeicher (10G) und Vorschaubilder in diesen Ordner herunterladen:</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER">
    <source></source>
    <translation>Ordner nach dem Aufnahme&amp;datum</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD_SUPPLEMENT">
    <source></source>
    <translation> (in beiden Ordnern; Sortierregeln nur im ersten)</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYYMMDD_MAC">
    <source></source>
    <translation>JJJJ_MM_TT</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_MAC">
    <source></source>
    <translation>JJJJ/MM</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_YYYYMMDD_MAC">
    <source></source>
    <translation>JJJJ/JJJJ_MM_TT</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_YYYYMMDD_MAC">
    <source></source>
    <translation>JJJJ/MM/JJJJ_MM_TT</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_NONE">
    <source></source>
    <translation>Keine Ordner nach Datum</translation>
  </message>
  <message id="DLG_SETTING_SORTING_RULE_NAME">
    <source></source>
    <translation>Sortierregel</translation>
  </message>
  <message id="DLG_SETTING_CREATE_SUBFOLDER">
    <source></source>
    <translation>Fotos nach den &amp;Sortierregeln Ihres Kontos in Ordner einsortieren</translation>
  </message>
  <message id="DLG_SETTING_DOWNLOAD_METADATA">
    <source></source>
    <translation>Fotos mit ihren &amp;Metadaten herunterladen, falls vorhanden</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_ACCESS">
    <source></source>
    <translation>Dieser Ordner kann nicht verwendet werden: Er ist nicht vorhanden, oder Sie dürfen nicht in ihn schreiben. Wählen Sie einen anderen Ordner oder legen Sie diesen zuerst an.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_SUPPORT">
    <source></source>
    <translation>In diesem Ordner können keine Fotos gespeichert werden, weil er auf einem Wechseldatenträger oder Netzlaufwerk liegt oder zum System gehört. Wählen Sie einen Ordner auf einem eingebauten Datenträger dieses Computers.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_TOO_LONG">
    <source></source>
    <translation>Der Pfad dieses Ordners ist zu lang. Wählen Sie einen Ordner mit einem kürzeren Pfad.</translation>
  </message>
  <message id="MSG_ERR_SETTINGS_NOT_SAVED">
    <source></source>
    <translation>Ihre Einstellungen konnten nicht gespeichert werden und gelten nur, bis Sie Downloaderpictora beenden. Prüfen Sie, ob der Datenträger voll ist und ob Sie in Ihren Benutzerordner schreiben dürfen, und speichern Sie dann erneut.</translation>
  </message>
  <!-- About -->
  <message id="DLG_ABOUT_TITLE">
    <source></source>
    <translation>Über Downloaderpictora</translation>
  </message>
  <!-- What does not open -->
  <message id="MSG_PAGE_NOT_OPENED">
    <source></source>
    <translation>Der Webbrowser ließ sich nicht öffnen. Kopieren Sie diese Adresse und öffnen Sie sie selbst in einem Browser.</translation>
  </message>
  <message id="MSG_FOLDER_NOT_OPENED">
    <source></source>
    <translation>Dieser Ordner ließ sich nicht öffnen. Vielleicht wurde er verschoben oder gelöscht, oder das Programm, das Ordner anzeigt, ist nicht gestartet.</translation>
  </message>
  <message id="MSG_ERR_LAUNCH_SETTING">
    <source></source>
    <translation>„Mit dem Computer starten“ ließ sich nicht ändern. Prüfen Sie, ob der Datenträger voll ist und ob Sie in Ihren Benutzerordner schreiben dürfen, und versuchen Sie es dann erneut.</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_ADDRESS">
    <source></source>
    <translation>Adresse kopieren</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_PATH">
    <source></source>
    <translation>Pfad kopieren</translation>
  </message>
  <!-- Results -->
  <message id="MSG_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>Neue Fotos wurden heruntergeladen. Klicken Sie hier, um den Ordner zu öffnen.</translation>
  </message>
  <message id="MSG_10G_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>Neue Fotos aus dem Langzeitspeicher wurden heruntergeladen. Klicken Sie hier, um den Ordner zu öffnen.</translation>
  </message>
  <message id="MSG_DOWNLOAD_ZERO">
    <source></source>
    <translation>Es gibt keine neuen Fotos zum Herunterladen.</translation>
  </message>
  <message id="MSG_INITIAL_ACCESS_COMPLETE">
    <source></source>
    <translation>Sie sind angemeldet. Ihre Fotos werden jetzt heruntergeladen.</translation>
  </message>
  <message id="MSG_ERR_CERTIFICATE">
    <source></source>
    <translation>Es konnte keine sichere Verbindung zum Fotodienst hergestellt werden. Prüfen Sie, ob Datum und Uhrzeit dieses Computers stimmen und ob Ihr Netzwerk sichere Verbindungen zulässt.</translation>
  </message>
  <message id="MSG_ERR_COMMUNICATION">
    <source></source>
    <translation>Der Fotodienst hat eine unverständliche Antwort geschickt. Downloaderpictora versucht es von selbst erneut.</translation>
  </message>
  <message id="MSG_ERR_DISK_FULL">
    <source></source>
    <translation>Der Datenträger mit Ihrem Download-Ordner ist voll. Geben Sie Speicherplatz frei; der Download geht dann von selbst weiter.</translation>
  </message>
  <message id="MSG_ERR_OFFLINE">
    <source></source>
    <translation>Der Fotodienst ist nicht erreichbar. Prüfen Sie Ihre Internetverbindung; Downloaderpictora versucht es von selbst erneut.</translation>
  </message>
  <message id="MSG_ERR_UNLINK">
    <source></source>
    <translation>Sie sind nicht beim Fotodienst angemeldet. Wählen Sie „Anmelden…“ im Menü oder klicken Sie hier, um Ihre Fotos zu erhalten.</translation>
  </message>
  <message id="MSG_ERR_RETRY">
    <source></source>
    <translation>Der Fotodienst ist überlastet. Downloaderpictora versucht es von selbst erneut.</translation>
  </message>
  <message id="MSG_ERR_SERVER">
    <source></source>
    <translation>Der Fotodienst hat ein Problem gemeldet. Downloaderpictora versucht es von selbst erneut.</translation>
  </message>
  <message id="MSG_ERR_DOWNLOAD">
    <source></source>
    <translation>Einige Fotos konnten nicht gespeichert werden. Prüfen Sie, ob Ihre Download-Ordner vorhanden sind und ob Sie in sie schreiben dürfen.</translation>
  </message>
  <message id="MSG_ERR_UNEXPECTED">
    <source></source>
    <translation>Ein unerwartetes Problem ist aufgetreten. Wenn es sich wiederholt, beenden Sie Downloaderpictora und starten Sie es neu.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID">
    <source></source>
    <translation>Der Fotodienst hat Ihre Anmeldung abgelehnt. Wählen Sie „Anmelden…“ im Menü, um sich erneut anzumelden.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID_NO_ANSWER">
    <source></source>
    <translation>Der Fotodienst antwortet gerade nicht, deshalb konnte Ihre Anmeldung nicht geprüft werden. Falls Sie sich gerade anmelden wollten, wählen Sie später noch einmal „Anmelden…“ im Menü; sonst wird sie von selbst erneut geprüft.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION">
    <source></source>
    <translation>Ihre Anmeldung ist nicht mehr gültig. Wählen Sie „Anmelden…“ im Menü, um sich erneut anzumelden.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NO_ANSWER">
    <source></source>
    <translation>Der Fotodienst antwortet gerade nicht, deshalb konnte Ihre Anmeldung nicht geprüft werden. Es ist nichts verloren: Downloaderpictora versucht es von selbst erneut.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NOT_ACCEPTED">
    <source></source>
    <translation>Was der Browser zurückgegeben hat, gehört zu keiner Anmeldung, die hier begonnen wurde. Wählen Sie „Anmelden…“ im Menü, um die Anmeldung noch einmal zu beginnen.</translation>
  </message>
  <message id="MSG_ERR_CLOCK">
    <source></source>
    <translation>Die Uhr dieses Computers geht falsch, und der Fotodienst lehnt Anfragen mit falscher Uhrzeit ab. Stellen Sie Datum und Uhrzeit richtig ein; Ihre Fotos kommen dann von selbst. Falls Sie sich gerade anmelden wollten, wählen Sie noch einmal „Anmelden…“ im Menü.</translation>
  </message>
  <message id="MSG_NEW_VERSION_RELEASED">
    <source></source>
    <translation>Eine neue Version von Downloaderpictora ist verfügbar. Sie erhalten sie dort, wo Sie auch diese erhalten haben.</translation>
  </message>
</context>
</TS>
