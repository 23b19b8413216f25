<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en">
<context>
  <name></name>
  <!-- Names -->
  <message id="APP_SHORT_NAME">
    <source></source>
    <translation>Downloaderpictora</translation>
  </message>
  <message id="APP_LONG_NAME">
    <source></source>
    <translation>Downloaderpictora – Téléchargement de photos</translation>
  </message>
  <!-- Start-up -->
  <message id="MSG_FIRST_LAUNCH">
    <source></source>
    <translation>Faut-il lancer Downloaderpictora au démarrage de l’ordinateur ? Les nouvelles photos arriveront alors d’elles-mêmes. Vous pourrez changer ce réglage à tout moment dans le menu.</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_START">
    <source></source>
    <translation>Lancer au démarrage</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_LATER">
    <source></source>
    <translation>Pas maintenant</translation>
  </message>
  <message id="MSG_ERR_START">
    <source></source>
    <translation>Downloaderpictora n’a pas pu démarrer. Réessayez ou redémarrez l’ordinateur.</translation>
  </message>
  <message id="MSG_ERR_MACHINE_ID">
    <source></source>
    <translation>Downloaderpictora ne peut pas démarrer, car l’identité de cet ordinateur est illisible. Réessayez plus tard.</translation>
  </message>
  <message id="MSG_ERR_PROFILE_IN_USE">
    <source></source>
    <translation>Downloaderpictora est déjà ouvert dans une autre de vos sessions et n’est pas joignable d’ici. Quittez-le d’abord là-bas.</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_OK_MAC">
    <source></source>
    <translation>Enregistrer</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CANCEL">
    <source></source>
    <translation>Annuler</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CLOSE">
    <source></source>
    <translation>Fermer</translation>
  </message>
  <!-- Menu -->
  <message id="MENU_DOWNLOAD">
    <source></source>
    <translation>Télécharger maintenant</translation>
  </message>
  <message id="MENU_DISP_SETTING">
    <source></source>
    <translation>Dossiers de téléchargement…</translation>
  </message>
  <message id="MENU_LOGIN">
    <source></source>
    <translation>Se connecter…</translation>
  </message>
  <message id="MENU_LOGOUT">
    <source></source>
    <translation>Se déconnecter</translation>
  </message>
  <message id="MENU_HELP">
    <source></source>
    <translation>Aide</translation>
  </message>
  <message id="MENU_ABOUT">
    <source></source>
    <translation>À propos de Downloaderpictora</translation>
  </message>
  <message id="MENU_LAUNCH_SETTING">
    <source></source>
    <translation>Lancer au démarrage de l’ordinateur</translation>
  </message>
  <message id="MENU_EXIT_MAC">
    <source></source>
    <translation>Quitter Downloaderpictora</translation>
  </message>
  <!-- Tooltips -->
  <message id="TOOL_TIP_STATUS_NORMAL">
    <source></source>
    <translation>Downloaderpictora : en attente de nouvelles photos</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DOWNLOADING">
    <source></source>
    <translation>Downloaderpictora : téléchargement de photos en cours</translation>
  </message>
  <message id="TOOL_TIP_STATUS_OFFLINE">
    <source></source>
    <translation>Downloaderpictora : service photo injoignable</translation>
  </message>
  <message id="TOOL_TIP_STATUS_MAINTENANCE">
    <source></source>
    <translation>Downloaderpictora : service photo indisponible pour le moment</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DISK_FULL">
    <source></source>
    <translation>Downloaderpictora : le disque est plein</translation>
  </message>
  <message id="TOOL_TIP_STATUS_ERR_DOWNLOAD">
    <source></source>
    <translation>Downloaderpictora : certaines photos n’ont pas pu être enregistrées</translation>
  </message>
  <message id="TOOL_TIP_STATUS_UNLINK">
    <source></source>
    <translation>Downloaderpictora : aucun compte connecté</translation>
  </message>
  <!-- Status view -->
  <message id="STATUS_UP_TO_DATE">
    <source></source>
    <translation>À jour</translation>
  </message>
  <message id="STATUS_NOT_LOOKED_YET">
    <source></source>
    <translation>En attente de la première recherche</translation>
  </message>
  <message id="STATUS_LOOKING">
    <source></source>
    <translation>Recherche de nouvelles photos…</translation>
  </message>
  <message id="STATUS_FETCHING">
    <source></source>
    <translation>Téléchargement des photos : %1 sur %2</translation>
  </message>
  <message id="STATUS_STILL_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln photo est encore à venir</numerusform>
      <numerusform>%Ln photos sont encore à venir</numerusform>
    </translation>
  </message>
  <message id="STATUS_STILL_TO_COME_HINT">
    <source></source>
    <translation>Downloaderpictora réessaie de lui-même pour les photos qui n’ont pas pu être téléchargées.</translation>
  </message>
  <message id="STATUS_NOT_LINKED">
    <source></source>
    <translation>Aucun compte connecté</translation>
  </message>
  <message id="STATUS_NOT_LINKED_HINT">
    <source></source>
    <translation>Connectez-vous à votre compte pour recevoir vos photos.</translation>
  </message>
  <message id="STATUS_LOGIN_NEEDED">
    <source></source>
    <translation>Connectez-vous à nouveau à votre compte</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS">
    <source></source>
    <translation>Votre compte est connecté</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS_HINT">
    <source></source>
    <translation>Voyez ci-dessous où vos photos seront enregistrées. Le téléchargement commence à la fermeture de cette fenêtre.</translation>
  </message>
  <message id="STATUS_OFFLINE">
    <source></source>
    <translation>Service photo injoignable</translation>
  </message>
  <message id="STATUS_OFFLINE_HINT">
    <source></source>
    <translation>Le téléchargement reprendra dès que la connexion sera rétablie.</translation>
  </message>
  <message id="STATUS_OFFLINE_UNTIL_HINT">
    <source></source>
    <translation>Prochaine tentative : %1, ou dès que la connexion sera rétablie.</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK">
    <source></source>
    <translation>L’horloge de cet ordinateur n’est pas à l’heure</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK_HINT">
    <source></source>
    <translation>L’horloge de cet ordinateur indique %1, le service photo %2. Tant que l’écart dépasse 15 minutes, le service refuse tout. Réglez la date et l’heure de cet ordinateur.</translation>
  </message>
  <message id="STATUS_DISK_FULL">
    <source></source>
    <translation>Le disque est plein</translation>
  </message>
  <message id="STATUS_NOT_SAVED">
    <source></source>
    <translation>Impossible d’enregistrer des photos</translation>
  </message>
  <message id="STATUS_FAILED">
    <source></source>
    <translation>La dernière recherche de photos a échoué</translation>
  </message>
  <message id="STATUS_TODAY" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln photo aujourd’hui</numerusform>
      <numerusform>%Ln photos aujourd’hui</numerusform>
    </translation>
  </message>
  <message id="STATUS_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln encore à venir</numerusform>
      <numerusform>%Ln encore à venir</numerusform>
    </translation>
  </message>
  <message id="STATUS_LAST_LOOK">
    <source></source>
    <translation>dernière recherche : %1</translation>
  </message>
  <message id="STATUS_NEXT_LOOK">
    <source></source>
    <translation>prochaine recherche : %1</translation>
  </message>
  <message id="STATUS_FREE_ROOM">
    <source></source>
    <translation>%1 libres</translation>
  </message>
  <message id="STATUS_FOLDER_MISSING">
    <source></source>
    <translation>introuvable</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER">
    <source></source>
    <translation>Ouvrir</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER_NAMED">
    <source></source>
    <translation>Ouvrir le dossier %1</translation>
  </message>
  <message id="STATUS_CHOOSE_FOLDER">
    <source></source>
    <translation>Choisir un dossier…</translation>
  </message>
  <message id="STATUS_LAST_PICTURES">
    <source></source>
    <translation>Dernières photos</translation>
  </message>
  <message id="STATUS_PICTURE_BUTTON">
    <source></source>
    <translation>Ouvre le dossier de cette photo</translation>
  </message>
  <message id="STATUS_NO_PICTURES_YET">
    <source></source>
    <translation>Les dernières photos arrivées s’affichent ici.</translation>
  </message>
  <!-- Download folders -->
  <message id="DLG_SETTING_SAVE_FOLDER_TITLE">
    <source></source>
    <translation>Où enregistrer vos photos</translation>
  </message>
  <message id="DLG_SETTING_FOLDER">
    <source></source>
    <translation>&amp;Dossier des nouvelles photos :</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_FOLDER">
    <source></source>
    <translation>Choisir le dossier des nouvelles photos</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_10G_FOLDER">
    <source></source>
    <translation>Choisir le dossier des photos du stockage à long terme (10G)</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_SELECT_MAC">
    <source></source>
    <translation>Choisir…</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD">
    <source></source>
    <translation>Télécharger aussi les photos du stockage à &amp;long terme (10G) et les aperçus dans ce dossier :</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER">
    <source></source>
    <translation>Dossiers par date de &amp;prise de vue</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD_SUPPLEMENT">
    <source></source>
    <translation> (dans les deux dossiers ; règles de tri dans le premier seulement)</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYYMMDD_MAC">
    <source></source>
    <translation>AAAA_MM_JJ</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_MAC">
    <source></source>
    <translation>AAAA/MM</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_YYYYMMDD_MAC">
    <source></source>
    <translation>AAAA/AAAA_MM_JJ</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_YYYYMMDD_MAC">
    <source></source>
    <translation>AAAA/MM/AAAA_MM_JJ</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_NONE">
    <source></source>
    <translation>Aucun dossier par date</translation>
  </message>
  <message id="DLG_SETTING_SORTING_RULE_NAME">
    <source></source>
    <translation>Règle de tri</translation>
  </message>
  <message id="DLG_SETTING_CREATE_SUBFOLDER">
    <source></source>
    <translation>&amp;Classer les photos dans des dossiers selon les règles de tri de votre compte</translation>
  </message>
  <message id="DLG_SETTING_DOWNLOAD_METADATA">
    <source></source>
    <translation>Télécharger les photos avec leurs &amp;métadonnées, si elles sont disponibles</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_ACCESS">
    <source></source>
    <translation>Ce dossier ne peut pas être utilisé : il n’existe pas, ou vous n’avez pas le droit d’y écrire. Choisissez un autre dossier ou créez d’abord celui-ci.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_SUPPORT">
    <source></source>
    <translation>Les photos ne peuvent pas être enregistrées dans ce dossier, car il se trouve sur un disque amovible ou réseau, ou appartient au système. Choisissez un dossier sur un disque interne de cet ordinateur.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_TOO_LONG">
    <source></source>
    <translation>Le chemin de ce dossier est trop long. Choisissez un dossier dont le chemin est plus court.</translation>
  </message>
  <message id="MSG_ERR_SETTINGS_NOT_SAVED">
    <source></source>
    <translation>Vos réglages n’ont pas pu être enregistrés et ne sont valables que jusqu’à ce que vous quittiez Downloaderpictora. Vérifiez que le disque n’est pas plein et que vous avez le droit d’écrire dans votre dossier personnel, puis enregistrez-les de nouveau.</translation>
  </message>
  <!-- About -->
  <message id="DLG_ABOUT_TITLE">
    <source></source>
    <translation>À propos de Downloaderpictora</translation>
  </message>
  <!-- What does not open -->
  <message id="MSG_PAGE_NOT_OPENED">
    <source></source>
    <translation>Le navigateur web ne s’est pas ouvert. Copiez cette adresse et ouvrez-la vous-même dans un navigateur.</translation>
  </message>
  <message id="MSG_FOLDER_NOT_OPENED">
    <source></source>
    <translation>Ce dossier n’a pas pu être ouvert. Il a peut-être été déplacé ou supprimé, ou le programme qui affiche les dossiers n’a pas démarré.</translation>
  </message>
  <message id="MSG_ERR_LAUNCH_SETTING">
    <source></source>
    <translation>Le réglage « Lancer au démarrage de l’ordinateur » n’a pas pu être modifié. Vérifiez que le disque n’est pas plein et que vous avez le droit d’écrire dans votre dossier personnel, puis réessayez.</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_ADDRESS">
    <source></source>
    <translation>Copier l’adresse</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_PATH">
    <source></source>
    <translation>Copier le chemin</translation>
  </message>
  <!-- Results -->
  <message id="MSG_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>De nouvelles photos ont été téléchargées. Cliquez ici pour ouvrir le dossier.</translation>
  </message>
  <message id="MSG_10G_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>De nouvelles photos du stockage à long terme ont été téléchargées. Cliquez ici pour ouvrir le dossier.</translation>
  </message>
  <message id="MSG_DOWNLOAD_ZERO">
    <source></source>
    <translation>Il n’y a pas de nouvelles photos à télécharger.</translation>
  </message>
  <message id="MSG_INITIAL_ACCESS_COMPLETE">
    <source></source>
    <translation>Votre compte est connecté. Vos photos vont maintenant être téléchargées.</translation>
  </message>
  <message id="MSG_ERR_CERTIFICATE">
    <source></source>
    <translation>Impossible d’établir une connexion sécurisée avec le service photo. Vérifiez que la date et l’heure de cet ordinateur sont justes et que votre réseau autorise les connexions sécurisées.</translation>
  </message>
  <message id="MSG_ERR_COMMUNICATION">
    <source></source>
    <translation>Le service photo a envoyé une réponse incompréhensible. Downloaderpictora réessaiera de lui-même.</translation>
  </message>
  <message id="MSG_ERR_DISK_FULL">
    <source></source>
    <translation>Le disque de votre dossier de téléchargement est plein. Libérez de l’espace ; le téléchargement reprendra alors de lui-même.</translation>
  </message>
  <message id="MSG_ERR_OFFLINE">
    <source></source>
    <translation>Le service photo est injoignable. Vérifiez votre connexion à Internet ; Downloaderpictora réessaiera de lui-même.</translation>
  </message>
  <message id="MSG_ERR_UNLINK">
    <source></source>
    <translation>Aucun compte n’est connecté. Choisissez « Se connecter… » dans le menu, ou cliquez ici, pour recevoir vos photos.</translation>
  </message>
  <message id="MSG_ERR_RETRY">
    <source></source>
    <translation>Le service photo est surchargé. Downloaderpictora réessaiera de lui-même.</translation>
  </message>
  <message id="MSG_ERR_SERVER">
    <source></source>
    <translation>Le service photo a signalé un problème. Downloaderpictora réessaiera de lui-même.</translation>
  </message>
  <message id="MSG_ERR_DOWNLOAD">
    <source></source>
    <translation>Certaines photos n’ont pas pu être enregistrées. Vérifiez que vos dossiers de téléchargement existent et que vous avez le droit d’y écrire.</translation>
  </message>
  <message id="MSG_ERR_UNEXPECTED">
    <source></source>
    <translation>Un problème inattendu s’est produit. S’il se reproduit, quittez Downloaderpictora puis relancez-le.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID">
    <source></source>
    <translation>Le service photo a refusé votre identification. Choisissez « Se connecter… » dans le menu pour vous connecter à nouveau.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID_NO_ANSWER">
    <source></source>
    <translation>Le service photo ne répond pas pour le moment : votre identification n’a pas pu être vérifiée. Si vous étiez en train de vous connecter, choisissez à nouveau « Se connecter… » dans le menu un peu plus tard ; sinon, elle sera vérifiée de nouveau automatiquement.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION">
    <source></source>
    <translation>Votre identification n’est plus valide. Choisissez « Se connecter… » dans le menu pour vous connecter à nouveau.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NO_ANSWER">
    <source></source>
    <translation>Le service photo ne répond pas pour le moment : votre identification n’a pas pu être vérifiée. Rien n’est perdu : Downloaderpictora réessaiera de lui-même.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NOT_ACCEPTED">
    <source></source>
    <translation>Ce que votre navigateur a renvoyé ne correspond à aucune identification commencée ici. Choisissez « Se connecter… » dans le menu pour recommencer.</translation>
  </message>
  <message id="MSG_ERR_CLOCK">
    <source></source>
    <translation>L’horloge de cet ordinateur n’est pas à l’heure, et le service photo refuse les demandes dont l’heure est fausse. Réglez la date et l’heure ; vos photos arriveront alors d’elles-mêmes. Si vous étiez en train de vous connecter, choisissez à nouveau « Se connecter… » dans le menu.</translation>
  </message>
  <message id="MSG_NEW_VERSION_RELEASED">
    <source></source>
    <translation>Une nouvelle version de Downloaderpictora est disponible. Vous la trouverez là où vous avez obtenu celle-ci.</translation>
  </message>
</context>
</TS>
