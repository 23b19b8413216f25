#include "platform/linux/AgentSocket.h"

#include "platform/AppInfo.h"
#include "platform/TerminationSignals.h"

#include <QCryptographicHash>
#include <QSocketNotifier>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <utility>

namespace platform {
namespace {

constexpr std::size_t kMostBytes = 64 * 1024;
constexpr char kTaken = 'k';

struct Address {
  sockaddr_un name{};
  socklen_t size = 0;

  [[nodiscard]] const sockaddr *get() const { return reinterpret_cast<const sockaddr *>(&name); }
};

/// A name that begins with a zero byte belongs to no file system.
Address addressOf(const QString &profile) {
  const QByteArray profileHash = QCryptographicHash::hash(profile.toUtf8(), QCryptographicHash::Sha256).toHex();
  const QByteArray text =
      QString::fromUtf16(kApplicationId).toUtf8() + '/' + QByteArray::number(::getuid()) + '/' + profileHash.left(32);
  Address address;
  address.name.sun_family = AF_UNIX;
  std::copy(text.begin(), text.end(), address.name.sun_path + 1);
  address.size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + static_cast<std::size_t>(text.size()));
  return address;
}

FileDescriptor makeSocket(int flags = 0) {
  return FileDescriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0));
}

/// Names of this kind are free to all: whoever is at the other end may be anybody.
bool isThisUser(const FileDescriptor &peer) {
  ucred credential{};
  socklen_t size = sizeof credential;
  return ::getsockopt(peer.get(), SOL_SOCKET, SO_PEERCRED, &credential, &size) == 0 && credential.uid == ::getuid();
}

bool limitWaits(const FileDescriptor &socket, std::chrono::milliseconds wait) {
  const auto whole = std::chrono::duration_cast<std::chrono::seconds>(wait);
  const timeval limit{.tv_sec = whole.count(), .tv_usec = std::chrono::microseconds(wait - whole).count()};
  return ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit) == 0
         && ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit) == 0;
}

QByteArray readMessage(const FileDescriptor &peer) {
  QByteArray message(kMostBytes, Qt::Uninitialized);
  const ssize_t count = ::recv(peer.get(), message.data(), kMostBytes, 0);
  message.truncate(std::max<ssize_t>(count, 0));
  return message;
}

} // namespace

AgentSocket::Answer AgentSocket::send(const QString &profile, const QByteArray &message,
                                      std::chrono::milliseconds wait) {
  const FileDescriptor socket = makeSocket();
  const Address address = addressOf(profile);
  if (!socket || !limitWaits(socket, wait)) return Answer::Failed;
  if (::connect(socket.get(), address.get(), address.size) != 0) return Answer::NoAgent;
  // Somebody else's, who may have taken the name to be in the way.
  if (!isThisUser(socket)) return Answer::NoAgent;
  const auto size = static_cast<std::size_t>(message.size());
  if (::send(socket.get(), message.constData(), size, MSG_NOSIGNAL) != message.size())
    return errno == EPIPE || errno == ECONNRESET ? Answer::NoAgent : Answer::Failed;
  char answer = 0;
  const ssize_t count = ::recv(socket.get(), &answer, 1, 0);
  if (count == 1) return Answer::Taken;
  return count == 0 || errno == ECONNRESET ? Answer::NoAgent : Answer::Failed;
}

AgentSocket::AgentSocket(const QString &profile, Judgement doesIt)
    : isDone(std::move(doesIt)), listener(makeSocket(SOCK_NONBLOCK)) {
  const Address address = addressOf(profile);
  if (!listener || ::bind(listener.get(), address.get(), address.size) != 0) return;
  if (::listen(listener.get(), SOMAXCONN) != 0) return;
  connect(new QSocketNotifier(listener.get(), QSocketNotifier::Read, this), &QSocketNotifier::activated, this,
          &AgentSocket::acceptPeer);
}

void AgentSocket::acceptPeer() {
  const auto peer =
      std::make_shared<FileDescriptor>(::accept4(listener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
  if (!*peer || !isThisUser(*peer)) return;
  auto *const notifier = new QSocketNotifier(peer->get(), QSocketNotifier::Read, this);
  connect(notifier, &QSocketNotifier::activated, this, [this, peer, notifier] {
    notifier->setEnabled(false);
    notifier->deleteLater();
    // A program that has been told to end hangs up: who takes its yes for one would not start another.
    const QByteArray message = TerminationSignals::hasCome() ? QByteArray() : readMessage(*peer);
    if (message.isEmpty()) return;
    // The last: whoever hears of it may take this object down.
    if (!isDone(message) || ::send(peer->get(), &kTaken, 1, MSG_NOSIGNAL) == 1) Q_EMIT received(message);
  });
}

} // namespace platform
