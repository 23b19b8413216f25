#include "service/KaProxyChoice.h"

#include "platform/Proxies.h"
#include "service/KaApplicationConstants.h"
#include "service/LoopbackHost.h"

#include <QUrl>

#include <algorithm>
#include <future>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// As long as browsers leave a proxy alone that they could not reach.
constexpr auto kUnreachableFor = std::chrono::minutes(5);

} // namespace

std::vector<ProxyAddress> KaProxyChoice::inOrder(std::vector<ProxyAddress> ways) const {
  const platform::MutexLock scope(lock);
  const auto after = Clock::now() - kUnreachableFor;
  std::vector<ProxyAddress> left;
  std::vector<ProxyAddress> last;
  for (ProxyAddress &way : ways) {
    const auto found = unreachable.find(way.url);
    const bool isUnreachable = found != unreachable.end() && found->second > after;
    (isUnreachable ? last : left).push_back(std::move(way));
  }
  std::move(last.begin(), last.end(), std::back_inserter(left));
  return left;
}

void KaProxyChoice::noteUnreachable(const ProxyAddress &way, Clock::time_point since) {
  if (way.isDirect()) return; // that was the host itself
  const platform::MutexLock scope(lock);
  if (since >= forgotten) unreachable[way.url] = Clock::now();
}

void KaProxyChoice::noteReached(const ProxyAddress &way) {
  const platform::MutexLock scope(lock);
  unreachable.erase(way.url);
}

void KaProxyChoice::forget() {
  {
    const platform::MutexLock scope(lock);
    unreachable.clear();
    forgotten = Clock::now();
  }
  platform::forgetProxies();
}

QByteArray proxiedOrigin(const QString &url) {
  const QUrl asked(url);
  const QString host = asked.host(QUrl::FullyEncoded);
  const bool isAddress = host.contains(u':');
  const QString authority = isAddress ? u'[' + host + u']' : host;
  if (isLoopbackHost(authority)) return {};
  const QString port = asked.port() < 0 ? QString() : u':' + QString::number(asked.port());
  return (asked.scheme() + u"://"_s + authority + port + u'/').toUtf8();
}

bool isServiceProxyOnLoopback(std::chrono::milliseconds wait) {
  const QByteArray origin = proxiedOrigin(u"https://%1/"_s.arg(KaApplicationConstants::strataHostName()));
  if (origin.isEmpty()) return false;
  const auto told = std::make_shared<std::promise<void>>();
  const platform::ProxyQuestion question(origin, [told] { told->set_value(); });
  if (!question.answer()) static_cast<void>(told->get_future().wait_for(wait));
  const auto ways = proxyAddresses(question.answer().value_or(QList<QByteArray>()));
  return std::any_of(ways.begin(), ways.end(), [](const ProxyAddress &way) {
    return !way.isDirect() && isLoopbackHost(QString::fromUtf8(proxyHost(way.url)));
  });
}
