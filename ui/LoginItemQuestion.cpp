#include "ui/LoginItemQuestion.h"

#include "platform/LoginItem.h"
#include "platform/ThreadBound.h"
#include "platform/UserDefaults.h"
#include "ui/MessageBoxes.h"
#include "ui/ShowInFront.h"
#include "ui/Texts.h"

#include <QMessageBox>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kFirstLaunch = "firstLaunch"_L1;
constexpr auto kLaunchAtLogin = "LaunchAtLogin"_L1;

bool askWhetherToLaunchAtLogin() {
  QMessageBox question(QMessageBox::NoIcon, localised("APP_SHORT_NAME"_L1), localised("MSG_FIRST_LAUNCH"_L1));
  QPushButton *const yes = question.addButton(localised("DLG_FIRST_LAUNCH_BUTTON_START"_L1), QMessageBox::AcceptRole);
  QPushButton *const no = question.addButton(localised("DLG_FIRST_LAUNCH_BUTTON_LATER"_L1), QMessageBox::RejectRole);
  dressMessageBox(question);
  question.setDefaultButton(yes);
  question.setEscapeButton(no);
  execInFront(question);
  return question.clickedButton() == yes;
}

} // namespace

bool isLaunchedAtLogin() {
  return platform::standardUserDefaults().boolValue(kLaunchAtLogin);
}

bool setLaunchedAtLogin(bool enable) {
  platform::assertMainThread();
  if (!platform::setLoginItemEnabled(enable)) return false;
  platform::standardUserDefaults().setBool(kLaunchAtLogin, enable);
  return true;
}

FirstLaunch askAtFirstLaunch(const std::function<bool()> &isTerminating) {
  platform::assertMainThread();
  auto &defaults = platform::standardUserDefaults();
  defaults.registerDefaults({{kFirstLaunch, u"YES"_s}});
  if (!defaults.boolValue(kFirstLaunch)) return FirstLaunch::GoesOn;
  const bool accepted = askWhetherToLaunchAtLogin();
  if (isTerminating()) return FirstLaunch::Ends;
  const bool isHeeded = setLaunchedAtLogin(accepted);
  defaults.setBool(kFirstLaunch, false);
  return isHeeded ? FirstLaunch::GoesOn : FirstLaunch::Unheeded;
}
