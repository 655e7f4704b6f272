#pragma once
// The instrument console: every control of the form at a fixed place, showing the form model.
// The window keeps no state of its own: a timer, which fires inside the dialogue's yields,
// copies the model into the controls, and each control's signal runs the form's operation.

#include "common/Form.h"

#include <QWidget>

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace orbline {
enum class Pane;
}  // namespace orbline

namespace orbline::console {

class ConsoleWindow : public QWidget {
  public:
    ConsoleWindow();

    // Shows the window at the form's compact size.
    void showCompact();
    // Copies the form into the controls.
    void refresh();

  protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void buildLineSettings();
    void buildSessionControls();
    void buildPanes();
    void buildAutomaticData();
    void buildCommands();
    // A control bound to its field of the form; the field is looked up at each refresh.
    // A chosen entry sets the list's position, or runs `chosen` instead when given.
    QComboBox* addList(QWidget* parent, const char* name, ListControl Form_TesvaneMain::*list,
                       int x, int y, int width, const std::function<void(int)>& chosen = {});
    QCheckBox* addCheck(QWidget* parent, const char* name, const QString& caption,
                        CheckControl Form_TesvaneMain::*check, int x, int y, int width);
    QLabel* addLabel(QWidget* parent, const QString& caption, int x, int y, int width);
    QPushButton* addButton(QWidget* parent, const char* name, const QString& caption, int x, int y,
                           int width = 84);
    QPlainTextEdit* paneBox(Pane pane) const;
    void informIfAny(const QString& text);
    void loadPane(Pane pane);
    void savePane(Pane pane);

    std::vector<std::pair<QComboBox*, ListControl Form_TesvaneMain::*>> lists_;
    std::vector<std::pair<QCheckBox*, CheckControl Form_TesvaneMain::*>> checks_;
    std::vector<std::pair<QWidget*, bool Form_TesvaneMain::*>> enables_;
    std::vector<std::pair<QLabel*, QString Form_TesvaneMain::*>> labels_;
    QPlainTextEdit* textDataW_ = nullptr;
    QPlainTextEdit* textDataR_ = nullptr;
    QPlainTextEdit* txtLog_ = nullptr;
    std::uint64_t shownLogRevision_ = ~std::uint64_t{0};
};

}  // namespace orbline::console
