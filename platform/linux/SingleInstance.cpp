#include "platform/SingleInstance.h"

#include "platform/ActivationToken.h"
#include "platform/AppInfo.h"
#include "platform/Folders.h"
#include "platform/Sight.h"
#include "platform/ThreadBound.h"
#include "platform/linux/AgentSocket.h"
#include "platform/linux/ApplicationAdaptor.h"
#include "platform/linux/ProfileLock.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>

#include <algorithm>
#include <array>
#include <thread>
#include <utility>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

constexpr auto kHandOverConnection = "handover"_L1;
constexpr std::chrono::milliseconds kHandOverWait(5000);
constexpr std::chrono::milliseconds kLeastWait(100);
constexpr std::chrono::milliseconds kBusWait(1000);
constexpr std::chrono::milliseconds kClaimInterval(50);

/// Messages of the socket: a letter, and what belongs to it.
constexpr char kActivate = 'A';
constexpr char kOpen = 'O';
constexpr char kToken = 'T'; ///< comes before the others; an agent that does not know it takes and drops it

QString name() {
  return QString::fromUtf16(kApplicationId);
}

QString objectPath() {
  return u'/' + name().replace(u'.', u'/');
}

QString profileFolder() {
  return applicationSupportFolder() + u"/NORVALE INC/Downloaderpictora"_s;
}

QDBusMessage applicationCall(const std::optional<QString> &url, const QString &token) {
  auto call = QDBusMessage::createMethodCall(name(), objectPath(), u"org.freedesktop.Application"_s,
                                             url ? u"Open"_s : u"Activate"_s);
  call.setAutoStartService(false);
  if (url) call << QStringList{*url};
  QVariantMap platformData;
  if (!token.isEmpty()) platformData.insert(u"activation-token"_s, token);
  call << platformData;
  return call;
}

QDBusMessage busCall(const QString &method) {
  return QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                        u"org.freedesktop.DBus"_s, method)
         << name();
}

SingleInstance::HandOver handOverByBus(const QDBusConnection &bus, const std::optional<QString> &url,
                                       const QString &token) {
  using enum SingleInstance::HandOver;
  const auto ask = [&bus](const QDBusMessage &call, std::chrono::milliseconds wait) {
    return bus.call(call, QDBus::Block, static_cast<int>(wait.count()));
  };
  const QDBusMessage reply = ask(applicationCall(url, token), kHandOverWait);
  if (reply.type() == QDBusMessage::ReplyMessage) return Delivered;
  // The last: an agent that ends takes its object away, and then gives its name up. Who found the name free is not
  // asked again whether it is: an agent that has taken it since would count as one that does not answer.
  static constexpr std::array kNoAgent = {"org.freedesktop.DBus.Error.ServiceUnknown"_L1,
                                          "org.freedesktop.DBus.Error.NameHasNoOwner"_L1,
                                          "org.freedesktop.DBus.Error.UnknownObject"_L1};
  if (std::ranges::find(kNoAgent, reply.errorName()) != kNoAgent.end()) return NoAgent;
  const QDBusMessage owned = ask(busCall(u"NameHasOwner"_s), kBusWait);
  const bool isFree = owned.type() == QDBusMessage::ReplyMessage && !owned.arguments().value(0).toBool();
  return isFree ? NoAgent : Failed;
}

SingleInstance::HandOver sendToProfilesAgent(const QByteArray &message, std::chrono::milliseconds wait) {
  switch (AgentSocket::send(profileFolder(), message, wait)) {
  case AgentSocket::Answer::Taken:
    return SingleInstance::HandOver::Delivered;
  case AgentSocket::Answer::NoAgent:
    return SingleInstance::HandOver::NoAgent;
  case AgentSocket::Answer::Failed:
    break;
  }
  return SingleInstance::HandOver::Failed;
}

SingleInstance::HandOver handOverBySocket(const std::optional<QString> &url, const QString &token) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + kHandOverWait;
  if (!token.isEmpty())
    if (const auto outcome = sendToProfilesAgent(kToken + token.toUtf8(), kHandOverWait);
        outcome != SingleInstance::HandOver::Delivered)
      return outcome;
  // Of both together; an agent that has just taken the one is awake for the other.
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
  return sendToProfilesAgent(url ? kOpen + url->toUtf8() : QByteArray(1, kActivate), std::max(left, kLeastWait));
}

} // namespace

class SingleInstance::Private {
public:
  explicit Private(const QStringList &actions) : showing(actions) {}

  const QStringList showing;
  ProfileLock lock;
  std::unique_ptr<AgentSocket> socket;
  bool isRegistered = false;
};

SingleInstance::SingleInstance(const QStringList &showing, QObject *parent)
    : QObject(parent), d(std::make_unique<Private>(showing)) {
  new ApplicationAdaptor(*this);
}

SingleInstance::~SingleInstance() {
  resign();
}

SingleInstance::HandOver SingleInstance::handOver(const std::optional<QString> &url, const QString &token) {
  HandOver outcome = HandOver::NoAgent;
  {
    const auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, kHandOverConnection);
    if (bus.isConnected()) outcome = handOverByBus(bus, url, token);
  }
  QDBusConnection::disconnectFromBus(kHandOverConnection);
  return outcome == HandOver::NoAgent ? handOverBySocket(url, token) : outcome;
}

SingleInstance::Claim SingleInstance::claimProfile(const std::optional<QString> &url,
                                                   std::chrono::milliseconds patience) {
  assertMainThread();
  // A profile that takes no file has no lock either; the socket still leads a later start to its agent.
  if (!makePrivateFolder(profileFolder())) return Claim::Won;
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (d->lock.tryLock(profileFolder() + u"/profile.lock"_s) == ProfileLock::Outcome::Taken) {
    if (handOver(url, activationToken()) == HandOver::Delivered) return Claim::HandedOver;
    if (std::chrono::steady_clock::now() > deadline) return Claim::Refused;
    std::this_thread::sleep_for(kClaimInterval);
  }
  return Claim::Won;
}

bool SingleInstance::serve() {
  assertMainThread();
  if (!serveOnBus()) return false;
  d->socket = std::make_unique<AgentSocket>(profileFolder(), [](const QByteArray &message) {
    return message.front() != kActivate || !isUnseen(); // else it ends, and leaves its place to the sender
  });
  connect(d->socket.get(), &AgentSocket::received, this, [this](const QByteArray &message) {
    if (message.front() == kToken) keepActivationToken(QString::fromUtf8(message.sliced(1)));
    if (message.front() == kOpen) Q_EMIT urlReceived(QString::fromUtf8(message.sliced(1)));
    if (message.front() == kActivate) Q_EMIT activated();
  });
  return true;
}

bool SingleInstance::serveOnBus() {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return true;
  // The object first: whoever sees the name may call at once.
  d->isRegistered =
      bus.registerObject(objectPath(), this, QDBusConnection::ExportAdaptors) && bus.registerService(name());
  if (!d->isRegistered) bus.unregisterObject(objectPath());
  return d->isRegistered;
}

bool SingleInstance::cannotShow(const QString &action) const {
  return isUnseen() && d->showing.contains(action);
}

void SingleInstance::resign() {
  d->socket.reset();
  auto bus = QDBusConnection::sessionBus();
  if (!std::exchange(d->isRegistered, false) || !bus.isConnected()) return;
  bus.unregisterObject(objectPath());
  // Not unregisterService(), which waits 25 s for a bus that hangs.
  bus.asyncCall(busCall(u"ReleaseName"_s));
}

} // namespace platform
