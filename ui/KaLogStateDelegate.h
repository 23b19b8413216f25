#pragma once

/// Is told when the diagnostic log was switched on or off. Main thread.
class KaLogStateDelegate {
public:
  KaLogStateDelegate() = default;
  KaLogStateDelegate(const KaLogStateDelegate &) = delete;
  KaLogStateDelegate &operator=(const KaLogStateDelegate &) = delete;
  virtual ~KaLogStateDelegate() = default;

  virtual void didSwitchStatus() = 0;
};
