#include "platform/SingleInstance.h"

#include "platform/AppInfo.h"
#include "platform/ThreadBound.h"
#include "platform/linux/ApplicationAdaptor.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QLockFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

const QString kHandOverConnection = u"handover"_s;
constexpr int kHandOverWaitMs = 5000;

QString name() {
  return QString::fromUtf16(kApplicationId);
}

QString objectPath() {
  return u'/' + name().replace(u'.', u'/');
}

QDBusMessage applicationCall(const std::optional<QString> &url) {
  auto call = QDBusMessage::createMethodCall(name(), objectPath(), u"org.freedesktop.Application"_s,
                                             url ? u"Open"_s : u"Activate"_s);
  call.setAutoStartService(false);
  if (url) call << QStringList{*url};
  call << QVariantMap();
  return call;
}

SingleInstance::HandOver outcomeOf(const QDBusMessage &reply) {
  if (reply.type() == QDBusMessage::ReplyMessage) return SingleInstance::HandOver::Delivered;
  const QString error = reply.errorName();
  const bool nobody =
      error == u"org.freedesktop.DBus.Error.NameHasNoOwner" || error == u"org.freedesktop.DBus.Error.ServiceUnknown";
  return nobody ? SingleInstance::HandOver::NoAgent : SingleInstance::HandOver::Failed;
}

/// In place of the bus name where there is no bus.
QString lockPath() {
  QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  if (folder.isEmpty()) folder = QDir::tempPath();
  return folder + u'/' + name() + u".lock"_s;
}

} // namespace

class SingleInstance::Private {
public:
  std::unique_ptr<QLockFile> lock;
  bool registered = false;
};

SingleInstance::SingleInstance(QObject *parent) : QObject(parent), d(std::make_unique<Private>()) {
  new ApplicationAdaptor(*this);
}

SingleInstance::~SingleInstance() {
  auto bus = QDBusConnection::sessionBus();
  if (!d->registered || !bus.isConnected()) return;
  bus.unregisterService(name());
  bus.unregisterObject(objectPath());
}

SingleInstance::HandOver SingleInstance::handOver(const std::optional<QString> &url) {
  HandOver outcome = HandOver::NoBus;
  {
    const auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, kHandOverConnection);
    if (bus.isConnected()) outcome = outcomeOf(bus.call(applicationCall(url), QDBus::Block, kHandOverWaitMs));
  }
  QDBusConnection::disconnectFromBus(kHandOverConnection);
  return outcome;
}

bool SingleInstance::becomePrimary() {
  assertMainThread();
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    d->lock = std::make_unique<QLockFile>(lockPath());
    d->lock->setStaleLockTime(0);
    return d->lock->tryLock();
  }
  // The object first: whoever sees the name may call at once.
  d->registered =
      bus.registerObject(objectPath(), this, QDBusConnection::ExportAdaptors) && bus.registerService(name());
  if (!d->registered) bus.unregisterObject(objectPath());
  return d->registered;
}

} // namespace platform
