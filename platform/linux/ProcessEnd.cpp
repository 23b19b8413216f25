#include "platform/ProcessEnd.h"

#include "platform/NoDestructor.h"

#include <QDebug>

#include <cstdlib>
#include <unistd.h>

namespace platform {
namespace {

std::function<void()> &lastJob() {
  static NoDestructor<std::function<void()>> job;
  return *job;
}

void runLastJob(int status, void * /*unused*/) {
  lastJob()();
  leaveProcess(status);
}

} // namespace

void leaveProcess(int status) {
  ::_exit(status);
}

void runBeforeExit(std::function<void()> job) {
  lastJob() = std::move(job);
  if (::on_exit(&runLastJob, nullptr) != 0) qWarning("the end of the display will lose what is not saved");
}

} // namespace platform
