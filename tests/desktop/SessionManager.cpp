#include "tests/desktop/SessionManager.h"

#include "tests/support/TestProfile.h"

#include <QSocketNotifier>

#include <X11/SM/SMlib.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <vector>

/// Everything happens in the event loop of the test.
class SessionManager::Private {
public:
  Private();
  ~Private();

  void take(SmsConn client);
  void acceptClient();
  void saved(SmsConn client);

  int count = 0;
  IceListenObj *listeners = nullptr;
  std::vector<std::unique_ptr<QSocketNotifier>> watched;
  std::vector<IceConn> clients;
  SmsConn member = nullptr;
  bool hasSaved = false;
  bool isEnding = false;
  bool isLeftAlone = false;
};

namespace {

SessionManager::Private *toldOf(SmPointer data) {
  return static_cast<SessionManager::Private *>(data);
}

Status registerClient(SmsConn client, SmPointer data, char *previousId) {
  if (previousId) return 0; // nothing is restored here
  const std::unique_ptr<char, decltype(&std::free)> id(SmsGenerateClientID(client), &std::free);
  SmsRegisterClientReply(client, id.get());
  SmsSaveYourself(client, SmSaveLocal, False, SmInteractStyleNone, False);
  toldOf(data)->member = client;
  return 1;
}

void takeProperties(SmsConn, SmPointer data, int count, SmProp **properties) {
  for (int i = 0; i < count; ++i) {
    if (qstrcmp(properties[i]->name, SmRestartStyleHint) == 0)
      toldOf(data)->isLeftAlone = *static_cast<const char *>(properties[i]->vals[0].value) == SmRestartNever;
    SmFreeProperty(properties[i]);
  }
  std::free(properties);
}

void ignoreNames(SmsConn, SmPointer, int count, char **names) {
  for (int i = 0; i < count; ++i)
    std::free(names[i]);
  std::free(names);
}

Status newClient(SmsConn, SmPointer data, unsigned long *mask, SmsCallbacks *callbacks, char **) {
  *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask
          | SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask
          | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask
          | SmsGetPropertiesProcMask;
  callbacks->register_client = {&registerClient, data};
  callbacks->interact_request = {[](SmsConn, SmPointer, int) {}, data};
  callbacks->interact_done = {[](SmsConn, SmPointer, Bool) {}, data};
  callbacks->save_yourself_request = {[](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {}, data};
  callbacks->save_yourself_phase2_request = {[](SmsConn client, SmPointer) { SmsSaveYourselfPhase2(client); }, data};
  callbacks->save_yourself_done = {[](SmsConn client, SmPointer told, Bool) { toldOf(told)->saved(client); }, data};
  callbacks->close_connection = {
      [](SmsConn, SmPointer, int reasonCount, char **reasons) { SmFreeReasons(reasonCount, reasons); }, data};
  callbacks->set_properties = {&takeProperties, data};
  callbacks->delete_properties = {&ignoreNames, data};
  callbacks->get_properties = {[](SmsConn client, SmPointer) { SmsReturnProperties(client, 0, nullptr); }, data};
  return 1;
}

} // namespace

SessionManager::Private::Private() {
  std::array<char, 256> error{};
  const auto size = static_cast<int>(error.size());
  const auto everybody = [](char *) -> Bool { return True; }; // the sockets are on this machine
  if (!SmsInitialize("test", "1", &newClient, this, everybody, size, error.data())
      || !IceListenForConnections(&count, &listeners, size, error.data()))
    throw std::runtime_error(error.data());
  IceSetIOErrorHandler([](IceConn) {});
  for (int i = 0; i < count; ++i)
    IceSetHostBasedAuthProc(listeners[i], everybody);
  const std::unique_ptr<char, decltype(&std::free)> ids(IceComposeNetworkIdList(count, listeners), &std::free);
  qputenv("SESSION_MANAGER", ids.get());
  acceptClient();
}

SessionManager::Private::~Private() {
  qunsetenv("SESSION_MANAGER");
  watched.clear();
  if (member) SmsCleanUp(member);
  for (const IceConn client : clients) {
    IceSetShutdownNegotiation(client, False);
    IceCloseConnection(client);
  }
  IceFreeListenObjs(count, listeners);
}

void SessionManager::Private::acceptClient() {
  for (int i = 0; i < count; ++i) {
    const IceListenObj listener = listeners[i];
    auto &door = watched.emplace_back(
        std::make_unique<QSocketNotifier>(IceGetListenConnectionNumber(listener), QSocketNotifier::Read));
    QObject::connect(door.get(), &QSocketNotifier::activated, door.get(), [this, listener] {
      IceAcceptStatus status = IceAcceptFailure;
      const IceConn client = IceAcceptConnection(listener, &status);
      if (!client) return;
      clients.push_back(client);
      auto &line =
          watched.emplace_back(std::make_unique<QSocketNotifier>(IceConnectionNumber(client), QSocketNotifier::Read));
      auto *const notifier = line.get();
      QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier, client] {
        if (IceProcessMessages(client, nullptr, nullptr) != IceProcessMessagesSuccess) notifier->setEnabled(false);
      });
    });
  }
}

void SessionManager::Private::saved(SmsConn client) {
  hasSaved = true;
  if (isEnding)
    SmsDie(client);
  else
    SmsSaveComplete(client);
}

SessionManager::SessionManager() : d(std::make_unique<Private>()) {
}

SessionManager::~SessionManager() = default;

bool SessionManager::waitForClient() {
  return waitFor([this] { return d->member && d->hasSaved; });
}

bool SessionManager::leavesClientAlone() const {
  return d->isLeftAlone;
}

void SessionManager::endSession() {
  d->isEnding = true;
  SmsSaveYourself(d->member, SmSaveBoth, True, SmInteractStyleNone, False);
}
