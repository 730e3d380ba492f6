#pragma once

#include <QLockFile>
#include <QString>

#include <memory>

namespace vkl::gui {

// Keeps a second copy of the editor from running: a lock file in the temporary folder, held
// while the program runs. A lock left behind by a copy that crashed is taken over, because the
// process named in it no longer runs.
class SingleInstance {
  public:
    // The lock file every copy of the editor uses.
    static QString defaultLockPath();

    explicit SingleInstance(const QString& lockPath = defaultLockPath());
    // True when this copy holds the lock (no other copy runs).
    bool acquire();

  private:
    std::unique_ptr<QLockFile> lock_;
};

}  // namespace vkl::gui
