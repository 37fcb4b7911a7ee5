#include "gui/main_window.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <limits>

#include "app/background_runner.h"
#include "app/controller/controller_state.h"
#include "app/controller/talvex_controller.h"
#include "gui/diagnostics_bar.h"
#include "gui/log_window.h"
#include "gui/shell_windows.h"
#include "gui/styled_document.h"
#include "gui/view_window.h"

namespace talvex::gui {

namespace {

using app::TextField;
using app::TextView;

struct FieldNames {
    const char* objectName;
    const char* viewTitle;
};

// By field, in the order of app::TextField.
constexpr std::array<FieldNames, app::kDisplayPairCount> kFieldNames = {{
    {"expressionField", "Expression"},
    {"rollField", "Roll"},
    {"statisticsField", "Statistics"},
    {"compareStatisticsField", "Comparison Statistics"},
    {"tableField", "Profile Table"},
    {"diagramField", "Profile Diagram"},
    {"tableCompareField1", "Tables: Expression"},
    {"tableCompareField2", "Tables: Comparison"},
    {"diagramCompareField1", "Diagrams: Expression"},
    {"diagramCompareField2", "Diagrams: Comparison"},
    {"versusField", "Versus"},
    {"versusLegendField", "Versus Legend"},
    {"versusWithTieField", "Versus with Tie"},
    {"versusWithTieLegendField", "Versus with Tie Legend"},
}};

constexpr const char* kFieldProperty = "talvexField";

// The commands of the expression-list pop-up and the list menu.
constexpr std::array<const char*, 4> kListCommands = {"Save", "Save As...", "Revert", "Delete"};
// Resizes arrive in bursts while a person drags; the displays follow once it pauses.
constexpr int kResizeSettleMilliseconds = 60;
// The statistics block: a title, a blank line and six statistics, with room to spare.
constexpr int kStatisticsLines = 9;

std::size_t at(TextField field) { return static_cast<std::size_t>(field); }

QList<QKeySequence> shortcuts(std::initializer_list<QKeySequence> wanted) {
    QList<QKeySequence> list;
    for (const QKeySequence& sequence : wanted) {
        if (!sequence.isEmpty() && !list.contains(sequence)) {
            list.append(sequence);
        }
    }
    return list;
}

QWidget* pairPage(QWidget* left, QWidget* right) {
    auto* page = new QWidget;
    auto* layout = new QHBoxLayout(page);
    // No margins: the page is exactly as tall as the fields, which tableFieldHeight relies on.
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(left, 1);
    layout->addWidget(right, 1);
    return page;
}

}  // namespace

MainWindow::MainWindow() {
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(QStringLiteral("Talvex"));
    buildWidgets();
    buildMenus();
    m_logWindow = new LogWindow(this);
    m_resizeSettled = new QTimer(this);
    m_resizeSettled->setSingleShot(true);
    m_resizeSettled->setInterval(kResizeSettleMilliseconds);
    resize(1180, 820);
}

MainWindow::~MainWindow() = default;

QTextEdit* MainWindow::makeField(TextField field, const char* name) {
    auto* edit = new QTextEdit;
    edit->setObjectName(QString::fromLatin1(name));
    edit->setReadOnly(true);
    edit->setUndoRedoEnabled(false);
    edit->setLineWrapMode(QTextEdit::NoWrap);
    edit->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    const QFont font = reportFont();
    edit->setFont(font);
    edit->document()->setDefaultFont(font);
    useReportTabStops(*edit->document(), font);
    edit->setToolTip(QStringLiteral("Double-click to open the %1 view in a window of its own")
                         .arg(QString::fromLatin1(kFieldNames[at(field)].viewTitle)));
    edit->viewport()->setProperty(kFieldProperty, static_cast<int>(field));
    edit->viewport()->installEventFilter(this);
    m_fields[at(field)] = edit;
    return edit;
}

void MainWindow::buildWidgets() {
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(8, 8, 8, 4);
    layout->setSpacing(6);

    // The request: the expression and its button.
    auto* requestRow = new QHBoxLayout;
    m_expressionField = new QLineEdit;
    m_expressionField->setObjectName(QString::fromLatin1(kFieldNames[0].objectName));
    m_expressionField->setPlaceholderText(
        QStringLiteral("Type a dice expression: 3d6, 5c7, "
                       "1d20+5, 3d6 vs 2d10 … and press Return"));
    m_expressionField->setFont(reportFont());
    m_expressionField->setClearButtonEnabled(true);
    // The default cap of 32767 characters would silently cut a long expression, for instance
    // one rolled from the expression's view.
    m_expressionField->setMaxLength(std::numeric_limits<int>::max());
    m_rollButton = new QPushButton(QStringLiteral("Roll"));
    m_rollButton->setObjectName(QStringLiteral("rollButton"));
    auto* expressionLabel = new QLabel(QStringLiteral("&Expression:"));
    expressionLabel->setBuddy(m_expressionField);
    requestRow->addWidget(expressionLabel);
    requestRow->addWidget(m_expressionField, 1);
    requestRow->addWidget(m_rollButton);
    layout->addLayout(requestRow);
    layout->addWidget(new DiagnosticsBar(m_expressionField));

    // What to compare and how: the pop-ups, the check boxes and the history.
    auto* choiceRow = new QHBoxLayout;
    const std::array<const char*, 4> popUpNames = {"expressionPop", "comparePop",
                                                   "expressionListPop", "compareListPop"};
    for (std::size_t i = 0; i < m_popUps.size(); ++i) {
        auto* combo = new QComboBox;
        combo->setObjectName(QString::fromLatin1(popUpNames[i]));
        combo->setEditable(false);
        combo->setSizeAdjustPolicy(QComboBox::AdjustToContentsOnFirstShow);
        combo->setMinimumContentsLength(18);
        // A choice calculates at once, so a wheel turned while passing over must not choose.
        combo->installEventFilter(this);
        m_popUps[i] = combo;
    }
    m_popUps[0]->setToolTip(QStringLiteral("The expressions of this session"));
    m_popUps[1]->setToolTip(QStringLiteral("The expression to compare with"));
    for (std::size_t i = 2; i < m_popUps.size(); ++i) {
        m_popUps[i]->setMinimumContentsLength(14);
    }
    m_popUps[2]->setToolTip(
        QStringLiteral("Your expression lists, and the commands that keep them"));
    m_popUps[3]->setToolTip(QStringLiteral("A list whose expressions become the comparisons"));
    // The list commands stand after the lists' names.
    QComboBox* lists = m_popUps[2];
    lists->insertSeparator(lists->count());
    lists->setItemData(lists->count() - 1, true, kCommandRole);
    for (const char* command : kListCommands) {
        lists->addItem(QString::fromLatin1(command));
        lists->setItemData(lists->count() - 1, true, kCommandRole);
    }
    // Up and down through each expression pop-up.
    const std::array<std::pair<const char*, const char*>, 4> steps = {{
        {"expressionUpButton", "▲"},
        {"expressionDownButton", "▼"},
        {"compareUpButton", "▲"},
        {"compareDownButton", "▼"},
    }};
    for (std::size_t i = 0; i < steps.size(); ++i) {
        auto* button = new QPushButton(QString::fromUtf8(steps[i].second));
        button->setObjectName(QString::fromLatin1(steps[i].first));
        button->setFixedWidth(button->fontMetrics().horizontalAdvance(QStringLiteral("MM")) + 16);
        button->setAutoDefault(false);
        m_stepButtons[i] = button;
    }
    m_stepButtons[0]->setToolTip(QStringLiteral("The expression above (Ctrl+Up)"));
    m_stepButtons[1]->setToolTip(QStringLiteral("The expression below (Ctrl+Down)"));
    m_stepButtons[2]->setToolTip(QStringLiteral("The comparison above (Ctrl+Shift+Up)"));
    m_stepButtons[3]->setToolTip(QStringLiteral("The comparison below (Ctrl+Shift+Down)"));
    auto* compareLabel = new QLabel(QStringLiteral("Com&pare with:"));
    compareLabel->setBuddy(m_popUps[1]);
    choiceRow->addWidget(m_popUps[0]);
    choiceRow->addWidget(m_stepButtons[0]);
    choiceRow->addWidget(m_stepButtons[1]);
    choiceRow->addWidget(compareLabel);
    choiceRow->addWidget(m_popUps[1]);
    choiceRow->addWidget(m_stepButtons[2]);
    choiceRow->addWidget(m_stepButtons[3]);
    choiceRow->addStretch(1);
    // The lists and the check boxes in a row of their own, so the window fits a small screen.
    auto* listRow = new QHBoxLayout;
    listRow->addWidget(new QLabel(QStringLiteral("Lists:")));
    listRow->addWidget(m_popUps[2]);
    listRow->addWidget(m_popUps[3]);
    listRow->addStretch(1);
    const std::array<std::pair<const char*, const char*>, 3> boxes = {{
        {"cycleCheckBox", "C&ycle"},
        {"logCheckBox", "&Log"},
        {"mirrorCheckBox", "&Mirror"},
    }};
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        auto* box = new QCheckBox(QString::fromLatin1(boxes[i].second));
        box->setObjectName(QString::fromLatin1(boxes[i].first));
        m_checkBoxes[i] = box;
        listRow->addWidget(box);
    }
    m_checkBoxes[static_cast<std::size_t>(app::CheckBox::cycle)]->setToolTip(
        QStringLiteral("Each new expression is compared with the one before"));
    m_checkBoxes[static_cast<std::size_t>(app::CheckBox::log)]->setToolTip(
        QStringLiteral("Record each request and its rolls in the log"));
    m_checkBoxes[static_cast<std::size_t>(app::CheckBox::mirror)]->setToolTip(
        QStringLiteral("Typed expressions join the comparison pop-up too"));
    m_checkBoxes[static_cast<std::size_t>(app::CheckBox::log)]->setChecked(true);
    m_backButton = new QPushButton(QStringLiteral("◀ Back"));
    m_backButton->setObjectName(QStringLiteral("backButton"));
    m_forwardButton = new QPushButton(QStringLiteral("Forward ▶"));
    m_forwardButton->setObjectName(QStringLiteral("forwardButton"));
    choiceRow->addWidget(m_backButton);
    choiceRow->addWidget(m_forwardButton);
    layout->addLayout(choiceRow);
    layout->addLayout(listRow);

    // The roll and the statistics of both expressions.
    for (std::size_t i = 1; i < kFieldCount; ++i) {
        makeField(static_cast<TextField>(i), kFieldNames[i].objectName);
    }
    QTextEdit* roll = m_fields[at(TextField::roll)];
    QFont rollFont = reportFont();
    rollFont.setPointSizeF(rollFont.pointSizeF() * 2.2);
    rollFont.setBold(true);
    roll->setFont(rollFont);
    roll->document()->setDefaultFont(rollFont);
    // The roll is drawn in a light yellow, which needs a dark ground.
    QPalette rollPalette = roll->palette();
    rollPalette.setColor(QPalette::Base, QColor(0x26, 0x2a, 0x33));
    rollPalette.setColor(QPalette::Text, QColor(0xf0, 0xf0, 0xf0));
    roll->setPalette(rollPalette);
    // Centring needs a line as wide as the field, which only wrapping at its width gives.
    roll->setLineWrapMode(QTextEdit::WidgetWidth);
    roll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    roll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    const QFontMetrics metrics(reportFont());
    const int statisticsHeight = metrics.lineSpacing() * kStatisticsLines + 12;
    auto* statisticsRow = new QHBoxLayout;
    statisticsRow->setSpacing(4);
    roll->setFixedSize(metrics.horizontalAdvance(QLatin1Char('0')) * 18, statisticsHeight);
    // The reports end in blank lines, which need no scroll bar; the view shows everything.
    for (const TextField field : {TextField::statistics, TextField::compareStatistics}) {
        m_fields[at(field)]->setFixedHeight(statisticsHeight);
        m_fields[at(field)]->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    }
    statisticsRow->addWidget(roll);
    statisticsRow->addWidget(m_fields[at(TextField::statistics)], 1);
    statisticsRow->addWidget(m_fields[at(TextField::compareStatistics)], 1);
    layout->addLayout(statisticsRow);

    // The five displays.
    m_tabs = new QTabWidget;
    m_tabs->setObjectName(QStringLiteral("tabs"));
    m_tabs->setDocumentMode(true);
    const std::array<std::pair<TextField, TextField>, 5> pages = {{
        {TextField::table, TextField::diagram},
        {TextField::tableCompare1, TextField::tableCompare2},
        {TextField::diagramCompare1, TextField::diagramCompare2},
        {TextField::versus, TextField::versusLegend},
        {TextField::versusWithTie, TextField::versusWithTieLegend},
    }};
    for (std::size_t i = 0; i < pages.size(); ++i) {
        m_tabs->addTab(pairPage(m_fields[at(pages[i].first)], m_fields[at(pages[i].second)]),
                       QString::fromLatin1(kTabLabels[i]));
    }
    layout->addWidget(m_tabs, 1);
    setCentralWidget(central);

    m_links =
        new QLabel(QStringLiteral("<a href=\"report\">Report a problem</a> · "
                                  "<a href=\"donate\">Donate</a>"));
    m_links->setObjectName(QStringLiteral("linksLabel"));
    m_links->setTextFormat(Qt::RichText);
    m_links->setToolTip(QStringLiteral("Not connected yet"));
    statusBar()->addPermanentWidget(m_links);
    statusBar()->setObjectName(QStringLiteral("statusBar"));
    m_expressionField->setFocus();
}

void MainWindow::buildMenus() {
    const auto action = [this](QMenu* menu, const QString& text, const char* name,
                               const QList<QKeySequence>& keys = {}) {
        QAction* made = menu->addAction(text);
        made->setObjectName(QString::fromLatin1(name));
        made->setShortcuts(keys);
        // Shortcuts work while a floating view has the focus as well.
        made->setShortcutContext(Qt::ApplicationShortcut);
        return made;
    };

    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    m_importListAction = action(file, QStringLiteral("&Import List…"), "importListAction");
    m_exportListAction = action(file, QStringLiteral("&Export List…"), "exportListAction");
    m_exportLogAction = action(file, QStringLiteral("Export &Log…"), "exportLogAction");
    file->addSeparator();
    m_printAction = action(
        file, QStringLiteral("&Print…"), "printAction",
        shortcuts({QKeySequence(QKeySequence::Print), QKeySequence(QStringLiteral("Ctrl+P"))}));
    m_printLogAction = action(file, QStringLiteral("Print Lo&g…"), "printLogAction");
    file->addSeparator();
    m_settingsAction = action(file, QStringLiteral("&Settings…"), "settingsAction",
                              shortcuts({QKeySequence(QKeySequence::Preferences),
                                         QKeySequence(QStringLiteral("Ctrl+,"))}));
    m_settingsAction->setMenuRole(QAction::PreferencesRole);
    file->addSeparator();
    m_resetAction = action(file, QStringLiteral("&Reset All Settings and Quit…"), "resetAction");
    file->addSeparator();
    m_quitAction = action(
        file, QStringLiteral("&Quit"), "quitAction",
        shortcuts({QKeySequence(QKeySequence::Quit), QKeySequence(QStringLiteral("Ctrl+Q"))}));
    m_quitAction->setMenuRole(QAction::QuitRole);

    m_calculateMenu = menuBar()->addMenu(QStringLiteral("&Calculate"));
    m_rollAction = action(m_calculateMenu, QStringLiteral("&Roll"), "rollAction",
                          {QKeySequence(QStringLiteral("Ctrl+R"))});
    // In the expression's own window Ctrl+R rolls the text typed there instead.
    m_rollAction->setShortcutContext(Qt::WindowShortcut);
    m_calculateMenu->addSeparator();
    m_backAction = action(m_calculateMenu, QStringLiteral("&Back"), "backAction",
                          shortcuts({QKeySequence(QStringLiteral("Ctrl+[")),
                                     QKeySequence(QStringLiteral("Alt+Left"))}));
    m_forwardAction = action(m_calculateMenu, QStringLiteral("&Forward"), "forwardAction",
                             shortcuts({QKeySequence(QStringLiteral("Ctrl+]")),
                                        QKeySequence(QStringLiteral("Alt+Right"))}));
    m_calculateMenu->addSeparator();
    const std::array<std::pair<const char*, const char*>, 4> stepItems = {{
        {"Previous Expression", "Ctrl+Up"},
        {"Next Expression", "Ctrl+Down"},
        {"Previous Comparison", "Ctrl+Shift+Up"},
        {"Next Comparison", "Ctrl+Shift+Down"},
    }};
    const std::array<const char*, 4> stepNames = {"expressionUpAction", "expressionDownAction",
                                                  "compareUpAction", "compareDownAction"};
    for (std::size_t i = 0; i < stepItems.size(); ++i) {
        m_stepActions[i] =
            action(m_calculateMenu, QString::fromLatin1(stepItems[i].first), stepNames[i],
                   {QKeySequence(QString::fromLatin1(stepItems[i].second))});
        m_stepActions[i]->setShortcutContext(Qt::WindowShortcut);
    }
    m_calculateMenu->addSeparator();
    m_runningAction =
        action(m_calculateMenu, QStringLiteral("R&unning Calculation"), "runningCalculationAction");
    m_runningAction->setCheckable(true);
    m_runningAction->setToolTip(
        QStringLiteral("Each roll becomes the start of the next expression"));

    // The lists by name, then the commands; filled each time it opens.
    m_listMenu = menuBar()->addMenu(QStringLiteral("&Lists"));
    m_listMenu->setObjectName(QStringLiteral("listPop"));

    QMenu* view = menuBar()->addMenu(QStringLiteral("&View"));
    m_showLogAction = action(view, QStringLiteral("&Log"), "showLogAction",
                             {QKeySequence(QStringLiteral("Ctrl+L"))});
    m_clearLogAction = action(view, QStringLiteral("&Clear Log"), "clearLogAction");
    m_exportLogToFolderAction =
        action(view, QStringLiteral("Copy Log to Lists &Folder"), "exportLogToFolderAction");
    view->addSeparator();
    for (std::size_t i = 0; i < kFieldCount; ++i) {
        const QString title = QString::fromLatin1(kFieldNames[i].viewTitle);
        m_viewActions[i] = view->addAction(title + QStringLiteral(" View"));
        m_viewActions[i]->setObjectName(QStringLiteral("viewAction%1").arg(i));
        connect(m_viewActions[i], &QAction::triggered, this,
                [this, i] { openView(static_cast<TextView>(i)); });
        if (i == 0 || i == 3) {
            view->addSeparator();
        }
    }
    view->addSeparator();
    m_linksAction = action(view, QStringLiteral("Hide Report/Donate Links"), "linksAction");

    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    m_helpAction = action(help, QStringLiteral("Talvex &Help"), "helpAction",
                          shortcuts({QKeySequence(QKeySequence::HelpContents)}));
    m_aboutAction = action(help, QStringLiteral("&About Talvex"), "aboutAction");
    m_aboutAction->setMenuRole(QAction::AboutRole);
}

void MainWindow::bind(app::TalvexContoller& controller, ShellWindows& shell,
                      app::BackgroundRunner& runner) {
    m_controller = &controller;
    m_shell = &shell;
    m_runner = &runner;
    app::TalvexContoller* c = &controller;

    connect(m_expressionField, &QLineEdit::returnPressed, this, [c] { c->roll(); });
    // While a calculation runs the button reads "Cancel" and stops it.
    connect(m_rollButton, &QPushButton::clicked, this, [this, c] {
        if (m_runner->isBusy()) {
            m_runner->cancel();
        } else {
            c->roll();
        }
    });
    connect(m_rollAction, &QAction::triggered, this, [c] { c->roll(); });
    // `activated` comes from the person only, so the controller's own selections do not
    // re-enter it.
    connect(m_popUps[0], &QComboBox::activated, this, [c] { c->expressionSelect(); });
    connect(m_popUps[1], &QComboBox::activated, this, [c] { c->compareSelect(); });
    connect(m_backButton, &QPushButton::clicked, this, [c] { c->stepBack(); });
    connect(m_forwardButton, &QPushButton::clicked, this, [c] { c->stepForward(); });
    connect(m_backAction, &QAction::triggered, this, [c] { c->stepBack(); });
    connect(m_forwardAction, &QAction::triggered, this, [c] { c->stepForward(); });

    connect(m_popUps[2], &QComboBox::activated, this, [this, c](int index) {
        if (m_popUps[2]->itemData(index, kCommandRole).toBool()) {
            runListCommand(m_popUps[2]->itemText(index));
        } else {
            c->expressionListSelect();
        }
    });
    connect(m_popUps[3], &QComboBox::activated, this, [c] { c->compareListSelect(); });
    // `clicked` comes from the person only; the controller's own changes do not re-enter.
    connect(m_checkBoxes[static_cast<std::size_t>(app::CheckBox::mirror)], &QCheckBox::clicked,
            this, [c] { c->mirrorSelect(); });
    const std::array<void (app::TalvexContoller::*)(), 4> steps = {
        &app::TalvexContoller::expressionUp, &app::TalvexContoller::expressionDown,
        &app::TalvexContoller::compareUp, &app::TalvexContoller::compareDown};
    for (std::size_t i = 0; i < steps.size(); ++i) {
        connect(m_stepButtons[i], &QPushButton::clicked, this,
                [c, step = steps[i]] { (c->*step)(); });
        connect(m_stepActions[i], &QAction::triggered, this,
                [c, step = steps[i]] { (c->*step)(); });
    }
    connect(m_listMenu, &QMenu::aboutToShow, this, [this] { fillListMenu(); });
    connect(m_importListAction, &QAction::triggered, this, [c] { c->importList(); });
    connect(m_exportListAction, &QAction::triggered, this, [c] { c->exprotList(); });
    connect(m_exportLogAction, &QAction::triggered, this, [c] { c->exportLogAs(); });
    connect(m_printAction, &QAction::triggered, this, [c] { c->profilePrint(); });
    connect(m_printLogAction, &QAction::triggered, this, [c] { c->logPrint(); });
    connect(m_showLogAction, &QAction::triggered, this, [this] { showLog(); });
    connect(m_clearLogAction, &QAction::triggered, this, [c] { c->clearLog(); });
    connect(m_exportLogToFolderAction, &QAction::triggered, this, [c] { c->exportLog(); });
    connect(m_logWindow, &LogWindow::clearRequested, this, [c] { c->clearLog(); });
    connect(m_logWindow, &LogWindow::exportRequested, this, [c] { c->exportLog(); });
    connect(m_logWindow, &LogWindow::printRequested, this, [c] { c->logPrint(); });

    connect(m_settingsAction, &QAction::triggered, this, [c] { c->settings(); });
    connect(m_resetAction, &QAction::triggered, this, [c] { c->resetAllSettingsAndQuit(); });
    connect(m_quitAction, &QAction::triggered, this, [c] { c->TalvexQuit(); });
    connect(m_linksAction, &QAction::triggered, this, [c] { c->toggleLinks(); });

    // The menu item shows the stored setting, however it was changed.
    m_runningAction->setChecked(controller.runningCalculation());
    connect(m_calculateMenu, &QMenu::aboutToShow, this,
            [this, c] { m_runningAction->setChecked(c->runningCalculation()); });
    connect(m_runningAction, &QAction::triggered, this,
            [c](bool on) { c->setRunningCalculation(on); });

    connect(m_resizeSettled, &QTimer::timeout, this, [c] { c->windowDidResize(); });

    connect(m_helpAction, &QAction::triggered, &shell, &ShellWindows::showHelp);
    connect(m_aboutAction, &QAction::triggered, &shell, &ShellWindows::showAbout);
}

void MainWindow::fillListMenu() {
    m_listMenu->clear();
    app::TalvexContoller* c = m_controller;
    const std::vector<std::string> names = popUpTitles(app::PopUp::expressionList);
    const std::string current = c != nullptr ? c->lists().expressionList() : std::string();
    for (std::size_t i = 1; i < names.size(); ++i) {
        QAction* item = m_listMenu->addAction(toQString(names[i]));
        item->setCheckable(true);
        item->setChecked(names[i] == current);
        connect(item, &QAction::triggered, this, [c, name = names[i]] {
            if (c != nullptr) {
                c->listSelect(name);
            }
        });
    }
    if (names.size() > 1) {
        m_listMenu->addSeparator();
    }
    QAction* edit = m_listMenu->addAction(QString::fromLatin1(app::kEditExpressions));
    edit->setObjectName(QStringLiteral("editExpressionsAction"));
    edit->setShortcut(QKeySequence(QStringLiteral("Ctrl+E")));
    connect(edit, &QAction::triggered, this, [c] {
        if (c != nullptr) {
            c->listSelect(app::kEditExpressions);
        }
    });
    const std::array<const char*, 4> keys = {"Ctrl+S", "Ctrl+Shift+S", "", ""};
    for (std::size_t i = 0; i < kListCommands.size(); ++i) {
        const QString command = QString::fromLatin1(kListCommands[i]);
        QAction* item = m_listMenu->addAction(command);
        item->setShortcut(QKeySequence(QString::fromLatin1(keys[i])));
        connect(item, &QAction::triggered, this, [this, command] { runListCommand(command); });
    }
    m_listMenu->addSeparator();
    QAction* folder = m_listMenu->addAction(QStringLiteral("Lists Folder..."));
    folder->setObjectName(QStringLiteral("listsFolderAction"));
    connect(folder, &QAction::triggered, this, [c] {
        if (c != nullptr) {
            c->listsFolder();
        }
    });
}

QStringList MainWindow::listMenuTitles() {
    fillListMenu();
    QStringList titles;
    for (const QAction* item : m_listMenu->actions()) {
        if (!item->isSeparator()) {
            titles << item->text();
        }
    }
    return titles;
}

void MainWindow::runListCommand(const QString& command) {
    app::TalvexContoller* c = m_controller;
    if (c == nullptr) {
        return;
    }
    if (command == QLatin1String("Save")) {
        c->expressionListSave();
    } else if (command == QLatin1String("Save As...")) {
        c->expressionListSaveAs();
    } else if (command == QLatin1String("Revert")) {
        c->expressionListRevert();
    } else if (command == QLatin1String("Delete")) {
        c->expressionListDelete();
    }
}

void MainWindow::showLog() {
    m_logWindow->show();
    m_logWindow->raise();
    m_logWindow->activateWindow();
}

void MainWindow::setLinksShown(bool shown, const QString& menuItemTitle) {
    m_links->setVisible(shown);
    m_linksAction->setText(menuItemTitle);
}

ViewWindow& MainWindow::viewWindow(TextView view) {
    const auto i = static_cast<std::size_t>(view);
    if (m_viewWindows[i] == nullptr) {
        const bool editable = view == TextView::expression;
        auto* window = new ViewWindow(
            QString::fromLatin1(kFieldNames[i].viewTitle) + QStringLiteral(" — Talvex"), editable,
            this);
        window->setObjectName(
            QStringLiteral("%1View").arg(QString::fromLatin1(kFieldNames[i].objectName)));
        window->setStyledText(m_viewTexts[i]);
        if (editable) {
            connect(window, &ViewWindow::rollRequested, this, [this] {
                if (m_controller != nullptr) {
                    m_controller->panelRoll();
                }
            });
            connect(window, &ViewWindow::cancelRequested, this, [this] {
                if (m_controller != nullptr) {
                    m_controller->panelCancel();
                }
            });
        }
        m_viewWindows[i] = window;
    }
    return *m_viewWindows[i];
}

void MainWindow::openView(TextView view) {
    ViewWindow& window = viewWindow(view);
    window.show();
    window.raise();
    window.activateWindow();
}

void MainWindow::requestExpression(const QString& text) {
    m_expressionField->setText(text);
    m_rollButton->click();
}

void MainWindow::compareWith(const QString& text) {
    if (m_controller == nullptr) {
        return;
    }
    const std::string current = selectedPopUpTitle(app::PopUp::expression);
    m_checkBoxes[static_cast<std::size_t>(app::CheckBox::mirror)]->setChecked(true);
    requestExpression(text);
    const std::string title = selectedPopUpTitle(app::PopUp::expression);
    // Back to the expression by its title: typed again, it would become a title of its own.
    if (current != app::kSelectExpression) {
        selectPopUpTitle(app::PopUp::expression, current);
        m_controller->expressionSelect();
    }
    selectPopUpTitle(app::PopUp::compare, title);
    m_controller->compareSelect();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    // Closing the main window asks to quit; the application ends through the shell instead.
    if (m_controller != nullptr && !m_controller->windowShouldClose(true)) {
        event->ignore();
        return;
    }
    event->accept();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (m_resizeSettled != nullptr) {
        m_resizeSettled->start();
    }
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Wheel &&
        std::find(m_popUps.begin(), m_popUps.end(), watched) != m_popUps.end()) {
        event->ignore();
        return true;
    }
    if (event->type() == QEvent::MouseButtonDblClick) {
        const QVariant field = watched->property(kFieldProperty);
        if (field.isValid()) {
            openView(static_cast<TextView>(field.toInt()));
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

}  // namespace talvex::gui
