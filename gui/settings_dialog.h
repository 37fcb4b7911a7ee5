#pragma once

#include <QDialog>
#include <array>
#include <string>

#include "app/ports.h"

class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace talvex::app {
class TalvexContoller;
}

namespace talvex::gui {

// The settings panel: the display and log settings, taken by Save, dropped by Cancel and
// filled with the factory values by Defaults.
//
// Object names follow the port: "<field>Field" for the texts ("dividersField", "heightField",
// "diagramHeightField", "maxBarField", "logSizeField", "statisticPrecisionField",
// "valuePrecisionField", "weightPrecisionField"), "<matrix>Row0" and "<matrix>Row1" for the
// radio buttons ("barsRow0" is relative bars, "intervalWeightsRow0" average interval weights),
// "<box>CheckBox" for the check boxes ("displaySameBarCheckBox", "logRollsCheckBox", ...),
// "saveButton", "cancelButton", "defaultsButton" and "problemLabel".
class SettingsDialog final : public QDialog {
    Q_OBJECT

  public:
    explicit SettingsDialog(QWidget* parent);

    void bind(app::TalvexContoller& controller);

    [[nodiscard]] QLineEdit* field(app::PanelField field) const;
    [[nodiscard]] QRadioButton* row(app::PanelMatrix matrix, int row) const;
    [[nodiscard]] QCheckBox* checkBox(app::PanelCheckBox box) const;
    [[nodiscard]] QLabel* problemLabel() const { return m_problem; }

  private:
    std::array<QLineEdit*, 8> m_fields{};
    std::array<std::array<QRadioButton*, 2>, 2> m_rows{};
    std::array<QCheckBox*, 7> m_checkBoxes{};
    QLabel* m_problem = nullptr;
    QPushButton* m_save = nullptr;
    QPushButton* m_cancel = nullptr;
    QPushButton* m_defaults = nullptr;
};

// The app::SettingsPanel port over the dialog. (The port's show and close differ from
// QWidget's, so the dialog does not implement it itself.)
class DialogSettingsPanel final : public app::SettingsPanel {
  public:
    explicit DialogSettingsPanel(SettingsDialog& dialog) : m_dialog(dialog) {}

    [[nodiscard]] std::string text(app::PanelField field) const override;
    void setText(app::PanelField field, const std::string& text) override;
    [[nodiscard]] int selectedRow(app::PanelMatrix matrix) const override;
    void selectRow(app::PanelMatrix matrix, int row) override;
    [[nodiscard]] bool isChecked(app::PanelCheckBox box) const override;
    void setChecked(app::PanelCheckBox box, bool on) override;
    void show() override;
    void close() override;
    void showProblem(const std::string& message) override;

  private:
    SettingsDialog& m_dialog;
};

}  // namespace talvex::gui
