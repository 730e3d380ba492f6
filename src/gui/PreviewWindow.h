#pragma once

#include <QDialog>
#include <QLabel>

#include <functional>

namespace vkl::gui {

// The bitmap preview of a submenu: a modeless window owned by the main window, holding the
// picture box Picture1 and sized to the picture plus a margin.
class PreviewWindow : public QDialog {
    Q_OBJECT
  public:
    // The margins are added to the picture's size: width and height, in pixels.
    PreviewWindow(QWidget* owner, QSize margins);

    // Shows the picture file (file-system name); the window takes the picture's size plus the
    // margins. An unreadable file leaves the picture box empty at the given size.
    void showPicture(const QString& fileName, QSize pictureSize);

    QLabel* picture() const { return picture_; }
    const QString& fileName() const { return fileName_; }

    // Called when the user closes the window.
    std::function<void()> onClosed;
    // Set when the window stands left of the main window: a wider picture then grows it to
    // the left, so that it keeps clear of the main window.
    bool growsLeft = false;

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    QLabel* picture_;
    QSize margins_;
    QString fileName_;
};

}  // namespace vkl::gui
