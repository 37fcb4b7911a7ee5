#include "gui/settings_dialog.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "app/controller/talvex_controller.h"
#include "gui/styled_document.h"

namespace talvex::gui {

namespace {

using app::PanelCheckBox;
using app::PanelField;
using app::PanelMatrix;

template <typename Enum>
std::size_t at(Enum value) {
    return static_cast<std::size_t>(value);
}

struct FieldEntry {
    PanelField field;
    const char* name;
    const char* label;
    const char* tip;
};

constexpr std::array<FieldEntry, 8> kFields = {{
    {PanelField::dividers, "dividersField",
     "Divid&ers:", "Percentiles that split the diagram, e.g. 25,50,75"},
    {PanelField::height, "heightField",
     "&Table height:", "The most rows a table or diagram may have"},
    {PanelField::diagramHeight, "diagramHeightField",
     "Dia&gram height:", "The rows of a diagram in its view"},
    {PanelField::maxBar, "maxBarField", "&Max bar:", "The length of the longest table bar"},
    {PanelField::logSize, "logSizeField", "Log si&ze:", "The entries the log keeps"},
    {PanelField::statisticPrecision, "statisticPrecisionField",
     "Stat&istics precision:", "Decimals of the statistics"},
    {PanelField::valuePrecision, "valuePrecisionField",
     "&Value precision:", "Decimals of the outcomes"},
    {PanelField::weightPrecision, "weightPrecisionField",
     "&Weight precision:", "Decimals of the probabilities"},
}};

struct BoxEntry {
    PanelCheckBox box;
    const char* name;
    const char* label;
};

constexpr std::array<BoxEntry, 7> kBoxes = {{
    {PanelCheckBox::displaySameBar, "displaySameBarCheckBox", "Same &bar scale in comparisons"},
    {PanelCheckBox::displayLegend, "displayLegendCheckBox", "Show &legend for comparisons"},
    {PanelCheckBox::logStatistics, "logStatisticsCheckBox", "Statistics"},
    {PanelCheckBox::logTable, "logTableCheckBox", "Table"},
    {PanelCheckBox::logDiagram, "logDiagramCheckBox", "Diagram"},
    {PanelCheckBox::logRolls, "logRollsCheckBox", "Rolls"},
    {PanelCheckBox::logLegend, "logLegendCheckBox", "Legend"},
}};

}  // namespace

SettingsDialog::SettingsDialog(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("settingsPanel"));
    setWindowTitle(QStringLiteral("Talvex Settings"));
    setWindowModality(Qt::WindowModal);

    auto* layout = new QVBoxLayout(this);
    auto* columns = new QHBoxLayout;
    layout->addLayout(columns);

    auto* displayBox = new QGroupBox(QStringLiteral("Display"));
    auto* form = new QFormLayout(displayBox);
    for (const FieldEntry& entry : kFields) {
        auto* edit = new QLineEdit;
        edit->setObjectName(QString::fromLatin1(entry.name));
        edit->setToolTip(QString::fromLatin1(entry.tip));
        m_fields[at(entry.field)] = edit;
        if (entry.field != PanelField::logSize) {
            form->addRow(QString::fromLatin1(entry.label), edit);
        }
    }
    m_fields[at(PanelField::dividers)]->setFont(reportFont());

    const std::array<std::array<const char*, 2>, 2> rowLabels = {{
        {"&Relative bars", "&Absolute bars"},
        {"Average i&nterval weights", "T&otal interval weights"},
    }};
    const std::array<const char*, 2> matrixNames = {"bars", "intervalWeights"};
    for (std::size_t m = 0; m < 2; ++m) {
        auto* group = new QButtonGroup(this);
        auto* rowsLayout = new QVBoxLayout;
        rowsLayout->setSpacing(2);
        for (std::size_t r = 0; r < 2; ++r) {
            auto* button = new QRadioButton(QString::fromLatin1(rowLabels[m][r]));
            button->setObjectName(
                QStringLiteral("%1Row%2").arg(QString::fromLatin1(matrixNames[m])).arg(r));
            group->addButton(button, static_cast<int>(r));
            rowsLayout->addWidget(button);
            m_rows[m][r] = button;
        }
        m_rows[m][0]->setChecked(true);
        form->addRow(QString(), rowsLayout);
    }
    for (std::size_t i = 0; i < 2; ++i) {
        auto* box = new QCheckBox(QString::fromLatin1(kBoxes[i].label));
        box->setObjectName(QString::fromLatin1(kBoxes[i].name));
        m_checkBoxes[at(kBoxes[i].box)] = box;
        form->addRow(QString(), box);
    }
    columns->addWidget(displayBox, 3);

    auto* logBox = new QGroupBox(QStringLiteral("Log"));
    logBox->setObjectName(QStringLiteral("logGroup"));
    auto* logLayout = new QVBoxLayout(logBox);
    auto* logSizeForm = new QFormLayout;
    logSizeForm->addRow(QString::fromLatin1(kFields[at(PanelField::logSize)].label),
                        m_fields[at(PanelField::logSize)]);
    logLayout->addLayout(logSizeForm);
    for (std::size_t i = 2; i < kBoxes.size(); ++i) {
        auto* box = new QCheckBox(QString::fromLatin1(kBoxes[i].label));
        box->setObjectName(QString::fromLatin1(kBoxes[i].name));
        m_checkBoxes[at(kBoxes[i].box)] = box;
        logLayout->addWidget(box);
    }
    logLayout->addStretch(1);
    columns->addWidget(logBox, 2);

    m_problem = new QLabel;
    m_problem->setObjectName(QStringLiteral("problemLabel"));
    m_problem->setWordWrap(true);
    m_problem->setStyleSheet(QStringLiteral("color: #b00020;"));
    m_problem->hide();
    layout->addWidget(m_problem);

    auto* buttons = new QDialogButtonBox;
    m_defaults = buttons->addButton(QStringLiteral("&Defaults"), QDialogButtonBox::ResetRole);
    m_cancel = buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    m_save = buttons->addButton(QStringLiteral("&Save"), QDialogButtonBox::AcceptRole);
    m_defaults->setObjectName(QStringLiteral("defaultsButton"));
    m_cancel->setObjectName(QStringLiteral("cancelButton"));
    m_save->setObjectName(QStringLiteral("saveButton"));
    m_save->setDefault(true);
    layout->addWidget(buttons);
}

void SettingsDialog::bind(app::TalvexContoller& controller) {
    app::TalvexContoller* c = &controller;
    connect(m_save, &QPushButton::clicked, this, [c] { c->settingsSave(); });
    connect(m_cancel, &QPushButton::clicked, this, [c] { c->settingsCancel(); });
    connect(m_defaults, &QPushButton::clicked, this, [c] { c->settingsDefaults(); });
    // Escape and the window's close button are a Cancel.
    connect(this, &QDialog::rejected, this, [c] { c->settingsCancel(); });
}

QLineEdit* SettingsDialog::field(PanelField field) const { return m_fields[at(field)]; }

QRadioButton* SettingsDialog::row(PanelMatrix matrix, int row) const {
    return m_rows[at(matrix)][static_cast<std::size_t>(row)];
}

QCheckBox* SettingsDialog::checkBox(PanelCheckBox box) const { return m_checkBoxes[at(box)]; }

std::string DialogSettingsPanel::text(PanelField field) const {
    return m_dialog.field(field)->text().toStdString();
}

void DialogSettingsPanel::setText(PanelField field, const std::string& text) {
    m_dialog.field(field)->setText(toQString(text));
}

int DialogSettingsPanel::selectedRow(PanelMatrix matrix) const {
    return m_dialog.row(matrix, 1)->isChecked() ? 1 : 0;
}

void DialogSettingsPanel::selectRow(PanelMatrix matrix, int row) {
    if (row == 0 || row == 1) {
        m_dialog.row(matrix, row)->setChecked(true);
    }
}

bool DialogSettingsPanel::isChecked(PanelCheckBox box) const {
    return m_dialog.checkBox(box)->isChecked();
}

void DialogSettingsPanel::setChecked(PanelCheckBox box, bool on) {
    m_dialog.checkBox(box)->setChecked(on);
}

void DialogSettingsPanel::show() {
    m_dialog.problemLabel()->clear();
    m_dialog.problemLabel()->hide();
    m_dialog.open();
    m_dialog.raise();
    m_dialog.activateWindow();
}

void DialogSettingsPanel::close() {
    // Hiding emits nothing, so the controller's own close does not come back as a Cancel.
    m_dialog.hide();
}

void DialogSettingsPanel::showProblem(const std::string& message) {
    m_dialog.problemLabel()->setText(toQString(message));
    m_dialog.problemLabel()->setVisible(!message.empty());
}

}  // namespace talvex::gui
