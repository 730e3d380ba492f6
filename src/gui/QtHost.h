#pragma once

#include <QPointer>
#include <QStringList>
#include <QWidget>

#include "platform/Host.h"

namespace vkl::gui {

// The host services with real dialogs. Message texts are Windows-1252 and converted here; file
// names travel in the file system's own encoding, so that the names the dialogs return open the
// files they name.
class QtHost : public Host {
  public:
    // The window that owns the dialogs and holds the pop-up menus (found by object name).
    void setWindow(QWidget* window) { window_ = window; }

    Answer msgBox(const MessageBox& box) override;
    ChosenFile openDialog(const FileDialog& dialog) override;
    ChosenFile saveDialog(const FileDialog& dialog) override;
    std::string browseForFolder(const std::string& title) override;
    std::optional<std::string> tempPath() override;
    std::string environ(int index) override;
    ClockReading now() override;
    PictureSize loadPicture(const std::string& path) override;
    std::string popupMenu(const std::string& menu) override;
    void endProgram() override;

    // True once the program was ended (also before the event loop ran, when quitting the loop
    // does not take effect and the caller must not start it).
    bool ended() const { return ended_; }

    // "Name|pattern|Name|pattern" as Qt name filters. Each filter keeps the name as written and
    // carries its patterns in a trailing group ("*.*" becomes "*", ";" separates patterns), for
    // a dialog that hides the filter details.
    static QStringList nameFilters(const std::string& filter);

  private:
    ChosenFile fileDialog(const FileDialog& dialog, bool save);

    QPointer<QWidget> window_;
    bool ended_ = false;
};

}  // namespace vkl::gui
