#pragma once

#include "ui/StatusItemState.h"
#include "ui/StatusItemView.h"

#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

/// Remembers what it was told to show.
class FakeStatusItem final : public StatusItemView {
public:
  struct Notification {
    QString title;
    QString text;
    QString processingResult;
  };

  void show(const StatusItemState &state) override {
    states.push_back(state);
    if (const auto fault = std::exchange(nextFault, {})) fault();
  }
  void alert(const QString &text) override { alerts << text; }
  void notify(const QString &title, const QString &text, const QString &processingResult) override {
    notifications.push_back({title, text, processingResult});
  }

  [[nodiscard]] StatusItemState last() const { return states.empty() ? StatusItemState{} : states.back(); }

  std::vector<StatusItemState> states;
  QStringList alerts;
  std::vector<Notification> notifications;
  std::function<void()> nextFault; ///< happens once, at the next show
};
