<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es" sourcelanguage="en">
<context>
  <name></name>
  <!-- Names -->
  <message id="APP_SHORT_NAME">
    <source></source>
    <translation>Downloaderpictora</translation>
  </message>
  <message id="APP_LONG_NAME">
    <source></source>
    <translation>Downloaderpictora – Descarga de fotos</translation>
  </message>
  <!-- Start-up -->
  <message id="MSG_FIRST_LAUNCH">
    <source></source>
    <translation>¿Desea que Downloaderpictora se abra al encender el equipo? Así, las fotos nuevas llegarán solas. Puede cambiarlo en el menú en cualquier momento.</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_START">
    <source></source>
    <translation>Abrir al encender</translation>
  </message>
  <message id="DLG_FIRST_LAUNCH_BUTTON_LATER">
    <source></source>
    <translation>Ahora no</translation>
  </message>
  <message id="MSG_ERR_START">
    <source></source>
    <translation>Downloaderpictora no se pudo iniciar. Vuelva a intentarlo o reinicie el equipo.</translation>
  </message>
  <message id="MSG_ERR_MACHINE_ID">
    <source></source>
    <translation>Downloaderpictora no se puede iniciar porque no se puede leer la identidad de este equipo. Vuelva a intentarlo más tarde.</translation>
  </message>
  <message id="MSG_ERR_PROFILE_IN_USE">
    <source></source>
    <translation>Downloaderpictora ya está abierto en otra de sus sesiones y no se puede acceder a él desde aquí. Ciérrelo primero allí.</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_OK_MAC">
    <source></source>
    <translation>Guardar</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CANCEL">
    <source></source>
    <translation>Cancelar</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_CLOSE">
    <source></source>
    <translation>Cerrar</translation>
  </message>
  <!-- Menu -->
  <message id="MENU_DOWNLOAD">
    <source></source>
    <translation>Descargar ahora</translation>
  </message>
  <message id="MENU_DISP_SETTING">
    <source></source>
    <translation>Carpetas de descarga…</translation>
  </message>
  <message id="MENU_LOGIN">
    <source></source>
    <translation>Iniciar sesión…</translation>
  </message>
  <message id="MENU_LOGOUT">
    <source></source>
    <translation>Cerrar sesión</translation>
  </message>
  <message id="MENU_HELP">
    <source></source>
    <translation>Ayuda</translation>
  </message>
  <message id="MENU_ABOUT">
    <source></source>
    <translation>Acerca de Downloaderpictora</translation>
  </message>
  <message id="MENU_LAUNCH_SETTING">
    <source></source>
    <translation>Abrir al encender el equipo</translation>
  </message>
  <message id="MENU_EXIT_MAC">
    <source></source>
    <translation>Salir de Downloaderpictora</translation>
  </message>
  <!-- Tooltips -->
  <message id="TOOL_TIP_STATUS_NORMAL">
    <source></source>
    <translation>Downloaderpictora: a la espera de fotos nuevas</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DOWNLOADING">
    <source></source>
    <translation>Downloaderpictora: descargando fotos</translation>
  </message>
  <message id="TOOL_TIP_STATUS_OFFLINE">
    <source></source>
    <translation>Downloaderpictora: sin conexión con el servicio de fotos</translation>
  </message>
  <message id="TOOL_TIP_STATUS_MAINTENANCE">
    <source></source>
    <translation>Downloaderpictora: el servicio de fotos no está disponible en este momento</translation>
  </message>
  <message id="TOOL_TIP_STATUS_DISK_FULL">
    <source></source>
    <translation>Downloaderpictora: el disco está lleno</translation>
  </message>
  <message id="TOOL_TIP_STATUS_ERR_DOWNLOAD">
    <source></source>
    <translation>Downloaderpictora: no se pudieron guardar algunas fotos</translation>
  </message>
  <message id="TOOL_TIP_STATUS_UNLINK">
    <source></source>
    <translation>Downloaderpictora: sesión no iniciada</translation>
  </message>
  <!-- Status view -->
  <message id="STATUS_UP_TO_DATE">
    <source></source>
    <translation>Todo al día</translation>
  </message>
  <message id="STATUS_NOT_LOOKED_YET">
    <source></source>
    <translation>En espera de la primera comprobación</translation>
  </message>
  <message id="STATUS_LOOKING">
    <source></source>
    <translation>Buscando fotos nuevas…</translation>
  </message>
  <message id="STATUS_FETCHING">
    <source></source>
    <translation>Descargando fotos: %1 de %2</translation>
  </message>
  <message id="STATUS_STILL_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>Falta %Ln foto por llegar</numerusform>
      <numerusform>Faltan %Ln fotos por llegar</numerusform>
    </translation>
  </message>
  <message id="STATUS_STILL_TO_COME_HINT">
    <source></source>
    <translation>Las fotos que no se pudieron descargar se vuelven a intentar automáticamente.</translation>
  </message>
  <message id="STATUS_NOT_LINKED">
    <source></source>
    <translation>Sesión no iniciada</translation>
  </message>
  <message id="STATUS_NOT_LINKED_HINT">
    <source></source>
    <translation>Inicie sesión en el servicio de fotos para recibir sus fotos.</translation>
  </message>
  <message id="STATUS_LOGIN_NEEDED">
    <source></source>
    <translation>Vuelva a iniciar sesión</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS">
    <source></source>
    <translation>Ha iniciado sesión</translation>
  </message>
  <message id="STATUS_AWAITS_FOLDERS_HINT">
    <source></source>
    <translation>Vea abajo dónde se guardarán sus fotos. La descarga comienza al cerrar esta ventana.</translation>
  </message>
  <message id="STATUS_OFFLINE">
    <source></source>
    <translation>Sin conexión con el servicio de fotos</translation>
  </message>
  <message id="STATUS_OFFLINE_HINT">
    <source></source>
    <translation>La descarga continuará cuando vuelva la conexión.</translation>
  </message>
  <message id="STATUS_OFFLINE_UNTIL_HINT">
    <source></source>
    <translation>Próximo intento: %1, o cuando vuelva la conexión.</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK">
    <source></source>
    <translation>El reloj de este equipo no está en hora</translation>
  </message>
  <message id="STATUS_WRONG_CLOCK_HINT">
    <source></source>
    <translation>El reloj de este equipo indica %1; el servicio de fotos, %2. Mientras difieran en más de 15 minutos, el servicio lo rechaza todo. Ajuste la fecha y la hora de este equipo.</translation>
  </message>
  <message id="STATUS_DISK_FULL">
    <source></source>
    <translation>El disco está lleno</translation>
  </message>
  <message id="STATUS_NOT_SAVED">
    <source></source>
    <translation>No se pueden guardar fotos</translation>
  </message>
  <message id="STATUS_FAILED">
    <source></source>
    <translation>La última búsqueda de fotos ha fallado</translation>
  </message>
  <message id="STATUS_TODAY" numerus="yes">
    <source></source>
    <translation>
      <numerusform>%Ln foto hoy</numerusform>
      <numerusform>%Ln fotos hoy</numerusform>
    </translation>
  </message>
  <message id="STATUS_TO_COME" numerus="yes">
    <source></source>
    <translation>
      <numerusform>falta %Ln por llegar</numerusform>
      <numerusform>faltan %Ln por llegar</numerusform>
    </translation>
  </message>
  <message id="STATUS_LAST_LOOK">
    <source></source>
    <translation>última búsqueda: %1</translation>
  </message>
  <message id="STATUS_NEXT_LOOK">
    <source></source>
    <translation>próxima búsqueda: %1</translation>
  </message>
  <message id="STATUS_FREE_ROOM">
    <source></source>
    <translation>%1 libres</translation>
  </message>
  <message id="STATUS_FOLDER_MISSING">
    <source></source>
    <translation>no se encuentra</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER">
    <source></source>
    <translation>Abrir</translation>
  </message>
  <message id="STATUS_OPEN_FOLDER_NAMED">
    <source></source>
    <translation>Abrir la carpeta %1</translation>
  </message>
  <message id="STATUS_CHOOSE_FOLDER">
    <source></source>
    <translation>Elegir carpeta…</translation>
  </message>
  <message id="STATUS_LAST_PICTURES">
    <source></source>
    <translation>Últimas fotos</translation>
  </message>
  <message id="STATUS_PICTURE_BUTTON">
    <source></source>
    <translation>Abre la carpeta de esta foto</translation>
  </message>
  <message id="STATUS_NO_PICTURES_YET">
    <source></source>
    <translation>Aquí aparecen las últimas fotos recibidas.</translation>
  </message>
  <!-- Download folders -->
  <message id="DLG_SETTING_SAVE_FOLDER_TITLE">
    <source></source>
    <translation>Dónde guardar sus fotos</translation>
  </message>
  <message id="DLG_SETTING_FOLDER">
    <source></source>
    <translation>Carpeta para las fotos &amp;nuevas:</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_FOLDER">
    <source></source>
    <translation>Elegir la carpeta para las fotos nuevas</translation>
  </message>
  <message id="DLG_SETTING_CHOOSE_10G_FOLDER">
    <source></source>
    <translation>Elegir la carpeta para las fotos del almacenamiento a largo plazo (10G)</translation>
  </message>
  <message id="DLG_COMMON_BUTTON_SELECT_MAC">
    <source></source>
    <translation>Elegir…</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD">
    <source></source>
    <translation>Descargar también las fotos del almacenamiento a &amp;largo plazo (10G) y las vistas previas en esta carpeta:</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER">
    <source></source>
    <translation>Carpetas según la &amp;fecha en que se tomó la foto</translation>
  </message>
  <message id="CHK_SETTING_SUB_10G_DOWNLOAD_SUPPLEMENT">
    <source></source>
    <translation> (en ambas carpetas; reglas de clasificación solo en la primera)</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYYMMDD_MAC">
    <source></source>
    <translation>AAAA_MM_DD</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_MAC">
    <source></source>
    <translation>AAAA/MM</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_YYYYMMDD_MAC">
    <source></source>
    <translation>AAAA/AAAA_MM_DD</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_YYYY_MM_YYYYMMDD_MAC">
    <source></source>
    <translation>AAAA/MM/AAAA_MM_DD</translation>
  </message>
  <message id="DLG_SETTING_SAVE_SUB_FOLDER_NONE">
    <source></source>
    <translation>Sin carpetas por fecha</translation>
  </message>
  <message id="DLG_SETTING_SORTING_RULE_NAME">
    <source></source>
    <translation>Regla de clasificación</translation>
  </message>
  <message id="DLG_SETTING_CREATE_SUBFOLDER">
    <source></source>
    <translation>&amp;Clasificar las fotos en carpetas según las reglas de clasificación de su cuenta</translation>
  </message>
  <message id="DLG_SETTING_DOWNLOAD_METADATA">
    <source></source>
    <translation>Descargar las fotos con sus &amp;metadatos, si están disponibles</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_ACCESS">
    <source></source>
    <translation>No se puede usar esta carpeta: no existe o usted no tiene permiso para escribir en ella. Elija otra carpeta o cree esta primero.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_NOT_SUPPORT">
    <source></source>
    <translation>No se pueden guardar fotos en esta carpeta porque está en un disco extraíble o de red, o porque pertenece al sistema. Elija una carpeta de un disco interno de este equipo.</translation>
  </message>
  <message id="MSG_TRANS_FOLDER_TOO_LONG">
    <source></source>
    <translation>La ruta de esta carpeta es demasiado larga. Elija una carpeta con una ruta más corta.</translation>
  </message>
  <message id="MSG_ERR_SETTINGS_NOT_SAVED">
    <source></source>
    <translation>No se pudo guardar su configuración, que solo vale hasta que salga de Downloaderpictora. Compruebe que el disco no esté lleno y que tenga permiso para escribir en su carpeta personal, y guárdela de nuevo.</translation>
  </message>
  <!-- About -->
  <message id="DLG_ABOUT_TITLE">
    <source></source>
    <translation>Acerca de Downloaderpictora</translation>
  </message>
  <!-- What does not open -->
  <message id="MSG_PAGE_NOT_OPENED">
    <source></source>
    <translation>No se pudo abrir el navegador web. Copie esta dirección y ábrala usted en un navegador.</translation>
  </message>
  <message id="MSG_FOLDER_NOT_OPENED">
    <source></source>
    <translation>No se pudo abrir esta carpeta. Puede que se haya movido o eliminado, o que no se haya iniciado el programa que muestra las carpetas.</translation>
  </message>
  <message id="MSG_ERR_LAUNCH_SETTING">
    <source></source>
    <translation>No se pudo cambiar «Abrir al encender el equipo». Compruebe que el disco no esté lleno y que tenga permiso para escribir en su carpeta personal, y vuelva a intentarlo.</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_ADDRESS">
    <source></source>
    <translation>Copiar dirección</translation>
  </message>
  <message id="DLG_NOT_OPENED_BUTTON_COPY_PATH">
    <source></source>
    <translation>Copiar ruta</translation>
  </message>
  <!-- Results -->
  <message id="MSG_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>Se han descargado fotos nuevas. Haga clic aquí para abrir la carpeta.</translation>
  </message>
  <message id="MSG_10G_DOWNLOAD_COMPLETE">
    <source></source>
    <translation>Se han descargado fotos nuevas del almacenamiento a largo plazo. Haga clic aquí para abrir la carpeta.</translation>
  </message>
  <message id="MSG_DOWNLOAD_ZERO">
    <source></source>
    <translation>No hay fotos nuevas que descargar.</translation>
  </message>
  <message id="MSG_INITIAL_ACCESS_COMPLETE">
    <source></source>
    <translation>Ha iniciado sesión. Ahora se descargarán sus fotos.</translation>
  </message>
  <message id="MSG_ERR_CERTIFICATE">
    <source></source>
    <translation>No se pudo establecer una conexión segura con el servicio de fotos. Compruebe que la fecha y la hora de este equipo sean correctas y que su red permita las conexiones seguras.</translation>
  </message>
  <message id="MSG_ERR_COMMUNICATION">
    <source></source>
    <translation>El servicio de fotos envió una respuesta que no se pudo entender. Downloaderpictora lo volverá a intentar por sí solo.</translation>
  </message>
  <message id="MSG_ERR_DISK_FULL">
    <source></source>
    <translation>El disco de su carpeta de descarga está lleno. Libere espacio; la descarga continuará entonces por sí sola.</translation>
  </message>
  <message id="MSG_ERR_OFFLINE">
    <source></source>
    <translation>No se pudo acceder al servicio de fotos. Compruebe su conexión a Internet; Downloaderpictora lo volverá a intentar por sí solo.</translation>
  </message>
  <message id="MSG_ERR_UNLINK">
    <source></source>
    <translation>No ha iniciado sesión en el servicio de fotos. Elija «Iniciar sesión…» en el menú o haga clic aquí para recibir sus fotos.</translation>
  </message>
  <message id="MSG_ERR_RETRY">
    <source></source>
    <translation>El servicio de fotos está saturado. Downloaderpictora lo volverá a intentar por sí solo.</translation>
  </message>
  <message id="MSG_ERR_SERVER">
    <source></source>
    <translation>El servicio de fotos informó de un problema. Downloaderpictora lo volverá a intentar por sí solo.</translation>
  </message>
  <message id="MSG_ERR_DOWNLOAD">
    <source></source>
    <translation>No se pudieron guardar algunas fotos. Compruebe que sus carpetas de descarga existan y que tenga permiso para escribir en ellas.</translation>
  </message>
  <message id="MSG_ERR_UNEXPECTED">
    <source></source>
    <translation>Se produjo un problema inesperado. Si vuelve a ocurrir, salga de Downloaderpictora y ábralo de nuevo.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID">
    <source></source>
    <translation>El servicio de fotos rechazó su inicio de sesión. Elija «Iniciar sesión…» en el menú para volver a iniciar sesión.</translation>
  </message>
  <message id="MSG_ERR_LINK_INVALID_NO_ANSWER">
    <source></source>
    <translation>El servicio de fotos no responde en este momento, por lo que no se pudo comprobar su sesión. Si estaba iniciando sesión, elija de nuevo «Iniciar sesión…» en el menú más tarde; si no, se comprobará de nuevo automáticamente.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION">
    <source></source>
    <translation>Su sesión ya no es válida. Elija «Iniciar sesión…» en el menú para volver a iniciar sesión.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NO_ANSWER">
    <source></source>
    <translation>El servicio de fotos no responde en este momento, por lo que no se pudo comprobar su sesión. No se ha perdido nada: Downloaderpictora lo volverá a intentar por sí solo.</translation>
  </message>
  <message id="MSG_ERR_VALIDATION_NOT_ACCEPTED">
    <source></source>
    <translation>Lo que devolvió su navegador no corresponde a un inicio de sesión comenzado aquí. Elija «Iniciar sesión…» en el menú para empezar de nuevo.</translation>
  </message>
  <message id="MSG_ERR_CLOCK">
    <source></source>
    <translation>El reloj de este equipo no está en hora y el servicio de fotos rechaza las solicitudes con una hora incorrecta. Ajuste la fecha y la hora; sus fotos llegarán entonces automáticamente. Si estaba iniciando sesión, elija de nuevo «Iniciar sesión…» en el menú.</translation>
  </message>
  <message id="MSG_NEW_VERSION_RELEASED">
    <source></source>
    <translation>Hay una versión nueva de Downloaderpictora. Puede obtenerla en el mismo sitio que esta.</translation>
  </message>
</context>
</TS>
