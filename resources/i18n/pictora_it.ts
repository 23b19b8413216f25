<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="it" sourcelanguage="en">
<context>
  <name></name>
  <!-- Names -->
  <message id="APP_SHORT_NAME">
    <source></source>
    <translation>Downloaderpictora</translation>
  </message>
  <message id="APP_LONG_NAME">
    <source></source>
    <translation>Downloaderpictora – Download di foto</translation>
  </message>
  <!-- Start-up -->
  <message id="MSG_FIRST_LAUNCH">
    <source></source>
    <translation>Vuoi avviare Downloaderpictora insieme al computer? Così le nuove foto arrivano da sole. Puoi cambiare questa impostazione in qualsiasi momento dal menu.</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_START">
    <source></source>
    <translation>Avvia insieme al computer</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_LATER">
    <source></source>
    <translation>Non ora</translation>
  </message>
  <message id="MSG_ERR_START">
    <source></source>
    <translation>Impossibile avviare Downloaderpictora. Riprovare o riavviare il computer.</translation>
  </message>
  <message id="MSG_ERR_MACHINE_ID">
    <source></source>
    <translation>Impossibile avviare Downloaderpictora perché l’identità di questo computer non è leggibile. Riprovare più tardi.</translation>
  </message>
  <message id="MSG_ERR_PROFILE_IN_USE">
    <source></source>
    <translation>Downloaderpictora è già in esecuzione in un’altra sessione dello stesso utente e non è raggiungibile da qui. Chiuderlo prima là.</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_OK_MAC">
    <source></source>
    <translation>Salva</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CANCEL">
    <source></source>
    <translation>Annulla</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CLOSE">
    <source></source>
    <translation>Chiudi</translation>
  </message>
  <!-- Menu -->
  <message id="MENU_DOWNLOAD">
    <source></source>
    <translation>Scarica ora</translation>
  </message>
  <message id="MENU_DISP_SETTING">
    <source></source>
    <translation>Cartelle di download…</translation>
  </message>
  <message id="MENU_LOGIN">
    <source></source>
    <translation>Accedi…</translation>
  </message>
  <message id="MENU_LOGOUT">
    <source></source>
    <translation>Disconnetti</translation>
  </message>
  <message id="MENU_HELP">
    <source></source>
    <translation>Aiuto</translation>
  </message>
  <message id="MENU_ABOUT">
    <source></source>
    <translation>Informazioni su Downloaderpictora</translation>
  </message>
  <message id="MENU_LAUNCH_SETTING">
    <source></source>
    <translation>Avvia insieme al computer</translation>
  </message>
  <message id="MENU_EXIT_MAC">
    <source></source>
    <translation>Esci da Downloaderpictora</translation>
  </message>
  <!-- Tooltips -->
  <message id="TOOL_TIP_STATUS_NORMAL">
    <source></source>
    <translation>Downloaderpictora: in attesa di nuove foto</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DOWNLOADING">
    <source></source>
    <translation>Downloaderpictora: download di foto in corso</translation>
  </message>
  <message id="TOOL_TIP_STATUS_OFFLINE">
    <source></source>
    <translation>Downloaderpictora: nessuna connessione al servizio foto</translation>
  </message>
  <message id="TOOL_TIP_STATUS_MAINTENANCE">
    <source></source>
    <translation>Downloaderpictora: il servizio foto al momento non è disponibile</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DISK_FULL">
    <source></source>
    <translation>Downloaderpictora: il disco è pieno</translation>
  </message>
  <message id="TOOL_TIP_STATUS_ERR_DOWNLOAD">
    <source></source>
    <translation>Downloaderpictora: impossibile salvare alcune foto</translation>
  </message>
  <message id="TOOL_TIP_STATUS_UNLINK">
    <source></source>
    <translation>Downloaderpictora: accesso non effettuato</translation>
  </message>
  <!-- Download folders -->
  <message id="DLG_SETTING_SAVE_FOLDER_TITLE">
    <source></source>
    <translation>Dove salvare le foto</translation>
  </message>
  <message id="DLG_SETTING_FOLDER">
    <source></source>
    <translation>Cartella per le &amp;nuove foto:</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_FOLDER">
    <source></source>
    <translation>Scegli la cartella per le nuove foto</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_10G_FOLDER">
    <source></source>
    <translation>Scegli la cartella per le foto dell’archivio a lungo termine (10G)</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_SELECT_MAC">
    <source></source>
    <translation>Scegli…</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD">
    <source></source>
    <translation>Scarica anche l’archivio a &amp;lungo termine (10G) e le anteprime in questa cartella:</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER">
    <source></source>
    <translation>Cartelle in base alla &amp;data di scatto</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD_SUPPLEMENT">
    <source></source>
    <translation> (in entrambe le cartelle; regole di smistamento solo nella prima)</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYYMMDD_MAC">
    <source></source>
    <translation>AAAA_MM_GG</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_MAC">
    <source></source>
    <translation>AAAA/MM</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_YYYYMMDD_MAC">
    <source></source>
    <translation>AAAA/AAAA_MM_GG</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_YYYYMMDD_MAC">
    <source></source>
    <translation>AAAA/MM/AAAA_MM_GG</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_NONE">
    <source></source>
    <translation>Nessuna cartella per data</translation>
  </message>
  <message id="DLG_SETTING_SORTING_RULE_NAME">
    <source></source>
    <translation>Regola di smistamento</translation>
  </message>
  <message id="DLG_SETTING_CREATE_SUBFOLDER">
    <source></source>
    <translation>&amp;Smista le foto in cartelle secondo le regole di smistamento dell’account</translation>
  </message>
  <message id="DLG_SETTING_DOWNLOAD_METADATA">
    <source></source>
    <translation>Scarica le foto con i relativi &amp;metadati, quando il servizio foto le offre così</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_ACCESS">
    <source></source>
    <translation>Questa cartella non può essere usata: non esiste oppure non si dispone del permesso di scrittura. Scegliere un’altra cartella oppure creare prima questa.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_SUPPORT">
    <source></source>
    <translation>Le foto non possono essere salvate in questa cartella, perché si trova su un disco rimovibile o di rete oppure appartiene al sistema. Scegliere una cartella su un disco interno di questo computer.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_TOO_LONG">
    <source></source>
    <translation>Il percorso di questa cartella è troppo lungo. Scegliere una cartella con un percorso più breve.</translation>
  </message>
  <!-- About -->
  <message id="DLG_ABOUT_TITLE">
    <source></source>
    <translation>Informazioni su Downloaderpictora</translation>
  </message>
  <!-- Results -->
  <message id="MSG_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>Tutte le nuove foto sono state scaricate. Fare clic qui per aprire la cartella.</translation>
  </message>
  <message id="MSG_10G_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>Tutte le nuove foto dell’archivio a lungo termine sono state scaricate. Fare clic qui per aprire la cartella.</translation>
  </message>
  <message id="MSG_DOWNLOAD_ZERO">
    <source></source>
    <translation>Non ci sono nuove foto da scaricare.</translation>
  </message>
  <message id="MSG_INITIAL_ACCESS_COMPLETE">
    <source></source>
    <translation>Accesso effettuato. Le foto verranno ora scaricate.</translation>
  </message>
  <message id="MSG_ERR_CERTIFICATE">
    <source></source>
    <translation>Impossibile stabilire una connessione sicura con il servizio foto. Controllare che la data e l’ora di questo computer siano corrette e che la rete consenta le connessioni sicure.</translation>
  </message>
  <message id="MSG_ERR_COMMUNICATION">
    <source></source>
    <translation>Il servizio foto ha inviato una risposta incomprensibile. Il download verrà ritentato più tardi.</translation>
  </message>
  <message id="MSG_ERR_DISK_FULL">
    <source></source>
    <translation>Il disco della cartella di download è pieno. Liberare spazio; il download proseguirà poi da solo.</translation>
  </message>
  <message id="MSG_ERR_OFFLINE">
    <source></source>
    <translation>Impossibile raggiungere il servizio foto. Controllare la connessione a Internet; il download verrà ritentato più tardi.</translation>
  </message>
  <message id="MSG_ERR_UNLINK">
    <source></source>
    <translation>L’accesso al servizio foto non è stato effettuato. Scegliere «Accedi…» dal menu, oppure fare clic qui, per ricevere le foto.</translation>
  </message>
  <message id="MSG_ERR_RETRY">
    <source></source>
    <translation>Il servizio foto è occupato. Il download verrà ritentato più tardi.</translation>
  </message>
  <message id="MSG_ERR_SERVER">
    <source></source>
    <translation>Il servizio foto ha segnalato un problema. Il download verrà ritentato più tardi.</translation>
  </message>
  <message id="MSG_ERR_DOWNLOAD">
    <source></source>
    <translation>Impossibile salvare alcune foto. Controllare che la cartella di download esista e che si disponga del permesso di scrittura.</translation>
  </message>
  <message id="MSG_ERR_UNEXPECTED">
    <source></source>
    <translation>Si è verificato un problema imprevisto. Se si ripete, uscire da Downloaderpictora e riavviarlo.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID">
    <source></source>
    <translation>Il servizio foto non ha accettato l’accesso. Scegliere «Accedi…» dal menu per accedere di nuovo.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION">
    <source></source>
    <translation>L’accesso non è più valido. Scegliere «Accedi…» dal menu per accedere di nuovo.</translation>
  </message>
  <message id="MSG_NEW_VERSION_RELEASED">
    <source></source>
    <translation>È disponibile una nuova versione di Downloaderpictora. La si può ottenere dove si è ottenuta quella attuale.</translation>
  </message>
</context>
</TS>
