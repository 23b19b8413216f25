# What only this system has; read by platform/CMakeLists.txt.
set_source_files_properties(linux/org.freedesktop.Notifications.xml PROPERTIES NO_NAMESPACE ON CLASSNAME NotificationsProxy)
qt_add_dbus_interface(notifications_proxy linux/org.freedesktop.Notifications.xml NotificationsProxy)

set(system_sources
  linux/ActivationToken.cpp
  linux/AgentSocket.cpp linux/AgentSocket.h
  linux/AppInfo.cpp
  linux/ApplicationAdaptor.h
  linux/BootClock.cpp
  linux/BlockDevice.cpp linux/BlockDevice.h
  linux/ColorScheme.cpp
  linux/DesktopEntry.cpp linux/DesktopEntry.h
  linux/FileDescriptor.h
  linux/FileIdentity.cpp
  linux/Folders.cpp
  linux/HiddenFiles.cpp linux/HiddenFiles.h
  linux/LoginItem.cpp
  linux/ModifierKeys.cpp
  linux/MountTable.cpp linux/MountTable.h
  linux/NetworkNews.cpp
  linux/NotificationCenter.cpp
  linux/Opening.cpp
  linux/ProcessEnd.cpp
  linux/ProfileLock.cpp linux/ProfileLock.h
  linux/Proxies.cpp
  linux/Sight.cpp
  linux/SingleInstance.cpp
  linux/SleepNews.cpp
  linux/StartupNotification.cpp linux/StartupNotification.h
  linux/TerminationSignals.cpp
  linux/ThreadName.cpp
  linux/TrayHost.cpp
  linux/UnpublishedFile.cpp
  linux/UrlScheme.cpp
  linux/UserDefaults.cpp
  linux/UserId.cpp
  linux/VolumeFacts.cpp
  ${notifications_proxy})
set(system_libraries Qt6::DBus PkgConfig::PROXY PkgConfig::XCB PkgConfig::SYSTEMD)
