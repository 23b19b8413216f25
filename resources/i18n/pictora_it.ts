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
    <translation>Vuoi avviare Downloaderpictora insieme al computer? Così le nuove foto arrivano da sole. Puoi cambiare l’impostazione in qualsiasi momento dal menu.</translation>
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
    <translation>Non è stato possibile avviare Downloaderpictora. Riprova o riavvia il computer.</translation>
  </message>
  <message id="MSG_ERR_MACHINE_ID">
    <source></source>
    <translation>Non è possibile avviare Downloaderpictora perché l’identità di questo computer non è leggibile. Riprova più tardi.</translation>
  </message>
  <message id="MSG_ERR_PROFILE_IN_USE">
    <source></source>
    <translation>Downloaderpictora è già aperto in un’altra tua sessione e da qui non è raggiungibile. Chiudilo prima là.</translation>
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
    <translation>Downloaderpictora: alcune foto non sono state salvate</translation>
  </message>
  <message id="TOOL_TIP_STATUS_UNLINK">
    <source></source>
    <translation>Downloaderpictora: accesso non effettuato</translation>
  </message>
  <!-- Status view -->
  <message id="STATUS_UP_TO_DATE">
    <source></source>
    <translation>Tutto aggiornato</translation>
  </message>
  <message id="STATUS_NOT_LOOKED_YET">
    <source></source>
    <translation>In attesa del primo controllo</translation>
  </message>
  <message id="STATUS_LOOKING">
    <source></source>
    <translation>Ricerca di nuove foto…</translation>
  </message>
  <message id="STATUS_FETCHING">
    <source></source>
    <translation>Download delle foto: %1 di %2</translation>
  </message>
  <message id="STATUS_STILL_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln foto deve ancora arrivare</numerusform>
      <numerusform>%Ln foto devono ancora arrivare</numerusform>
    </translation>
  </message>
  <message id="STATUS_STILL_TO_COME_HINT">
    <source></source>
    <translation>Downloaderpictora riprova da solo a scaricare le foto che mancano.</translation>
  </message>
  <message id="STATUS_NOT_LINKED">
    <source></source>
    <translation>Accesso non effettuato</translation>
  </message>
  <message id="STATUS_NOT_LINKED_HINT">
    <source></source>
    <translation>Accedi al servizio foto per ricevere le tue foto.</translation>
  </message>
  <message id="STATUS_LOGIN_NEEDED">
    <source></source>
    <translation>Accedi di nuovo</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS">
    <source></source>
    <translation>Accesso effettuato</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS_HINT">
    <source></source>
    <translation>Qui sotto è indicato dove verranno salvate le foto. Il download inizia alla chiusura di questa finestra.</translation>
  </message>
  <message id="STATUS_OFFLINE">
    <source></source>
    <translation>Nessuna connessione al servizio foto</translation>
  </message>
  <message id="STATUS_OFFLINE_HINT">
    <source></source>
    <translation>Il download proseguirà quando la connessione sarà ripristinata.</translation>
  </message>
  <message id="STATUS_OFFLINE_UNTIL_HINT">
    <source></source>
    <translation>Prossimo tentativo: %1, oppure quando la connessione sarà ripristinata.</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK">
    <source></source>
    <translation>L’orologio di questo computer è sbagliato</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK_HINT">
    <source></source>
    <translation>L’orologio di questo computer segna %1, il servizio foto %2. Finché differiscono di più di 15 minuti, il servizio rifiuta tutto. Imposta la data e l’ora di questo computer.</translation>
  </message>
  <message id="STATUS_DISK_FULL">
    <source></source>
    <translation>Il disco è pieno</translation>
  </message>
  <message id="STATUS_NOT_SAVED">
    <source></source>
    <translation>Impossibile salvare le foto</translation>
  </message>
  <message id="STATUS_FAILED">
    <source></source>
    <translation>L’ultima ricerca di foto non è riuscita</translation>
  </message>
  <message id="STATUS_TODAY" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln foto oggi</numerusform>
      <numerusform>%Ln foto oggi</numerusform>
    </translation>
  </message>
  <message id="STATUS_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln ancora in arrivo</numerusform>
      <numerusform>%Ln ancora in arrivo</numerusform>
    </translation>
  </message>
  <message id="STATUS_LAST_LOOK">
    <source></source>
    <translation>ultima ricerca: %1</translation>
  </message>
  <message id="STATUS_NEXT_LOOK">
    <source></source>
    <translation>prossima ricerca: %1</translation>
  </message>
  <message id="STATUS_FREE_ROOM">
    <source></source>
    <translation>%1 liberi</translation>
  </message>
  <message id="STATUS_FOLDER_MISSING">
    <source></source>
    <translation>non trovata</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER">
    <source></source>
    <translation>Apri</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER_NAMED">
    <source></source>
    <translation>Apri la cartella %1</translation>
  </message>
  <message id="STATUS_CHOOSE_FOLDER">
    <source></source>
    <translation>Scegli una cartella…</translation>
  </message>
  <message id="STATUS_LAST_PICTURES">
    <source></source>
    <translation>Ultime foto</translation>
  </message>
  <message id="STATUS_PICTURE_BUTTON">
    <source></source>
    <translation>Apre la cartella di questa foto</translation>
  </message>
  <message id="STATUS_NO_PICTURES_YET">
    <source></source>
    <translation>Qui compaiono le ultime foto arrivate.</translation>
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
    <translation>Scarica anche le foto dell’archivio a &amp;lungo termine (10G) e le anteprime in questa cartella:</translation>
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
    <translation>&amp;Smista le foto in cartelle secondo le regole di smistamento del tuo account</translation>
  </message>
  <message id="DLG_SETTING_DOWNLOAD_METADATA">
    <source></source>
    <translation>Scarica le foto con i loro &amp;metadati, se disponibili</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_ACCESS">
    <source></source>
    <translation>Questa cartella non può essere usata: non esiste oppure non hai il permesso di scrittura. Scegli un’altra cartella oppure crea prima questa.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_SUPPORT">
    <source></source>
    <translation>Le foto non possono essere salvate in questa cartella, perché si trova su un disco rimovibile o di rete oppure appartiene al sistema. Scegli una cartella su un disco interno di questo computer.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_TOO_LONG">
    <source></source>
    <translation>Il percorso di questa cartella è troppo lungo. Scegli una cartella con un percorso più breve.</translation>
  </message>
  <message id="MSG_ERR_SETTINGS_NOT_SAVED">
    <source></source>
    <translation>Le tue impostazioni non sono state salvate e valgono solo finché non esci da Downloaderpictora. Controlla che il disco non sia pieno e che tu abbia il permesso di scrittura nella tua cartella personale, poi salvale di nuovo.</translation>
  </message>
  <!-- About -->
  <message id="DLG_ABOUT_TITLE">
    <source></source>
    <translation>Informazioni su Downloaderpictora</translation>
  </message>
  <!-- What does not open -->
  <message id="MSG_PAGE_NOT_OPENED">
    <source></source>
    <translation>Il browser web non si è aperto. Copia questo indirizzo e aprilo in un browser.</translation>
  </message>
  <message id="MSG_FOLDER_NOT_OPENED">
    <source></source>
    <translation>Impossibile aprire questa cartella. Forse è stata spostata o eliminata, oppure il programma che mostra le cartelle non si è avviato.</translation>
  </message>
  <message id="MSG_ERR_LAUNCH_SETTING">
    <source></source>
    <translation>Non è stato possibile modificare «Avvia insieme al computer». Controlla che il disco non sia pieno e che tu abbia il permesso di scrittura nella tua cartella personale, poi riprova.</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_ADDRESS">
    <source></source>
    <translation>Copia indirizzo</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_PATH">
    <source></source>
    <translation>Copia percorso</translation>
  </message>
  <!-- Results -->
  <message id="MSG_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>Nuove foto sono state scaricate. Fai clic qui per aprire la cartella.</translation>
  </message>
  <message id="MSG_10G_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>Nuove foto dell’archivio a lungo termine sono state scaricate. Fai clic qui per aprire la cartella.</translation>
  </message>
  <message id="MSG_DOWNLOAD_ZERO">
    <source></source>
    <translation>Non ci sono nuove foto da scaricare.</translation>
  </message>
  <message id="MSG_INITIAL_ACCESS_COMPLETE">
    <source></source>
    <translation>Accesso effettuato. Ora le tue foto verranno scaricate.</translation>
  </message>
  <message id="MSG_ERR_CERTIFICATE">
    <source></source>
    <translation>Non è stato possibile stabilire una connessione sicura con il servizio foto. Controlla che la data e l’ora di questo computer siano corrette e che la rete consenta le connessioni sicure.</translation>
  </message>
  <message id="MSG_ERR_COMMUNICATION">
    <source></source>
    <translation>Il servizio foto ha inviato una risposta incomprensibile. Downloaderpictora riproverà da solo.</translation>
  </message>
  <message id="MSG_ERR_DISK_FULL">
    <source></source>
    <translation>Il disco della cartella di download è pieno. Libera spazio; il download proseguirà poi da solo.</translation>
  </message>
  <message id="MSG_ERR_OFFLINE">
    <source></source>
    <translation>Il servizio foto non è raggiungibile. Controlla la connessione a Internet; Downloaderpictora riproverà da solo.</translation>
  </message>
  <message id="MSG_ERR_UNLINK">
    <source></source>
    <translation>Non hai effettuato l’accesso al servizio foto. Scegli «Accedi…» dal menu, oppure fai clic qui, per ricevere le tue foto.</translation>
  </message>
  <message id="MSG_ERR_RETRY">
    <source></source>
    <translation>Il servizio foto è sovraccarico. Downloaderpictora riproverà da solo.</translation>
  </message>
  <message id="MSG_ERR_SERVER">
    <source></source>
    <translation>Il servizio foto ha segnalato un problema. Downloaderpictora riproverà da solo.</translation>
  </message>
  <message id="MSG_ERR_DOWNLOAD">
    <source></source>
    <translation>Alcune foto non sono state salvate. Controlla che le cartelle di download esistano e che tu abbia il permesso di scrittura.</translation>
  </message>
  <message id="MSG_ERR_UNEXPECTED">
    <source></source>
    <translation>Si è verificato un problema imprevisto. Se si ripete, esci da Downloaderpictora e riavvialo.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID">
    <source></source>
    <translation>Il servizio foto ha rifiutato l’accesso. Scegli «Accedi…» dal menu per accedere di nuovo.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID_NO_ANSWER">
    <source></source>
    <translation>Al momento il servizio foto non risponde e non è stato possibile verificare l’accesso. Se stavi effettuando l’accesso, scegli di nuovo «Accedi…» dal menu più tardi; altrimenti verrà verificato di nuovo da solo.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION">
    <source></source>
    <translation>L’accesso non è più valido. Scegli «Accedi…» dal menu per accedere di nuovo.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NO_ANSWER">
    <source></source>
    <translation>Al momento il servizio foto non risponde e non è stato possibile verificare l’accesso. Nulla è andato perso: Downloaderpictora riproverà da solo.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NOT_ACCEPTED">
    <source></source>
    <translation>Ciò che il browser ha restituito non appartiene a un accesso avviato da qui. Scegli «Accedi…» dal menu per ricominciare.</translation>
  </message>
  <message id="MSG_ERR_CLOCK">
    <source></source>
    <translation>L’orologio di questo computer è sbagliato e il servizio foto rifiuta le richieste con un’ora errata. Imposta la data e l’ora corrette; le foto arriveranno poi da sole. Se stavi effettuando l’accesso, scegli di nuovo «Accedi…» dal menu.</translation>
  </message>
  <message id="MSG_NEW_VERSION_RELEASED">
    <source></source>
    <translation>È disponibile una nuova versione di Downloaderpictora. La trovi dove hai ottenuto questa.</translation>
  </message>
</context>
</TS>
