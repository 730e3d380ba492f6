#include "gui/SingleInstance.h"

#include <QDir>

namespace vkl::gui {

QString SingleInstance::defaultLockPath() {
    return QDir::tempPath() + QStringLiteral("/vkleditor.lock");
}

SingleInstance::SingleInstance(const QString& lockPath)
    : lock_(std::make_unique<QLockFile>(lockPath)) {
    // A running editor holds its lock for hours; only a lock whose process is gone is stale,
    // never one that is merely old.
    lock_->setStaleLockTime(0);
}

bool SingleInstance::acquire() {
    return lock_->isLocked() || lock_->tryLock(0);
}

}  // namespace vkl::gui
