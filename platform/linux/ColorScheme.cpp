#include "platform/ColorScheme.h"

#include "platform/ThreadBound.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

constexpr auto kPortal = "org.freedesktop.portal.Desktop"_L1;
constexpr auto kPath = "/org/freedesktop/portal/desktop"_L1;
constexpr auto kSettings = "org.freedesktop.portal.Settings"_L1;
constexpr auto kNamespace = "org.freedesktop.appearance"_L1;
constexpr auto kKey = "color-scheme"_L1;
constexpr uint kDark = 1; // 0: no wish, 2: light

} // namespace

class ColorScheme::Private : public QObject {
  Q_OBJECT

public:
  explicit Private(ColorScheme &scheme) : owner(scheme) {
    assertMainThread();
    QDBusConnection bus = QDBusConnection::sessionBus();
    // A call would never end without one, not even in an error.
    if (!bus.isConnected()) return;
    bus.connect(kPortal, kPath, kSettings, u"SettingChanged"_s, this, SLOT(onChanged(QDBusMessage)));
    auto question = QDBusMessage::createMethodCall(kPortal, kPath, kSettings, u"Read"_s);
    question << QString(kNamespace) << QString(kKey);
    auto *const answer = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
      answer->deleteLater();
      const QDBusPendingReply<QDBusVariant> reply = *answer;
      if (reply.isValid()) tell(reply.value());
    });
  }

private Q_SLOTS:
  // Whole: the library does not know each type of an argument yet when it is asked to connect.
  void onChanged(const QDBusMessage &news) {
    const QVariantList told = news.arguments();
    if (told.size() == 3 && told[0] == kNamespace && told[1] == kKey) tell(told[2].value<QDBusVariant>());
  }

private:
  /// The answer to a question is a value within a value; news are not.
  void tell(const QDBusVariant &value) {
    QVariant inner = value.variant();
    if (inner.canConvert<QDBusVariant>()) inner = inner.value<QDBusVariant>().variant();
    if (inner.typeId() == QMetaType::UInt) Q_EMIT owner.told(inner.toUInt() == kDark);
  }

  ColorScheme &owner;
};

ColorScheme::ColorScheme(QObject *parent) : QObject(parent), d(std::make_unique<Private>(*this)) {
}

ColorScheme::~ColorScheme() = default;

} // namespace platform

#include "ColorScheme.moc"
