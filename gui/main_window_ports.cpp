// The main window as the controller sees it: the app::MainWindow port over the widgets.

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QStatusBar>
#include <QTabWidget>
#include <QTextEdit>
#include <QTimer>

#include "gui/main_window.h"
#include "gui/styled_document.h"
#include "gui/view_window.h"

namespace talvex::gui {

namespace {

using app::TextField;
using app::TextView;

template <typename Enum>
std::size_t at(Enum value) {
    return static_cast<std::size_t>(value);
}

}  // namespace

std::string MainWindow::fieldText(TextField field) const {
    if (field == TextField::expression) {
        return m_expressionField->text().toStdString();
    }
    return m_fieldTexts[at(field)].string();
}

core::StyledText MainWindow::fieldAttributedText(TextField field) const {
    if (field == TextField::expression) {
        return core::StyledText(fieldText(field));
    }
    return m_fieldTexts[at(field)];
}

void MainWindow::setFieldText(TextField field, const std::string& text) {
    setFieldAttributedText(field, core::StyledText(text));
}

void MainWindow::setFieldAttributedText(TextField field, const core::StyledText& text) {
    if (field == TextField::expression) {
        m_expressionField->setText(toQString(text.string()));
        return;
    }
    m_fieldTexts[at(field)] = text;
    QTextEdit* edit = m_fields[at(field)];
    writeStyledText(*edit->document(), text);
    edit->moveCursor(QTextCursor::Start);
}

std::string MainWindow::viewText(TextView view) const {
    // Only the expression's view can be edited, so only there may the window hold news.
    if (const ViewWindow* window = m_viewWindows[at(view)];
        view == TextView::expression && window != nullptr) {
        return window->plainText().toStdString();
    }
    return m_viewTexts[at(view)].string();
}

void MainWindow::setViewAttributedText(TextView view, const core::StyledText& text) {
    m_viewTexts[at(view)] = text;
    if (ViewWindow* window = m_viewWindows[at(view)]; window != nullptr) {
        window->setStyledText(text);
    }
}

void MainWindow::clearView(TextView view) { setViewAttributedText(view, core::StyledText()); }

QComboBox* MainWindow::popUp(app::PopUp popUp) const { return m_popUps[at(popUp)]; }

int MainWindow::entryCount(app::PopUp pop) const {
    const QComboBox* combo = popUp(pop);
    for (int i = 0; i < combo->count(); ++i) {
        if (combo->itemData(i, kCommandRole).toBool()) {
            return i;
        }
    }
    return combo->count();
}

std::vector<std::string> MainWindow::popUpTitles(app::PopUp pop) const {
    const QComboBox* combo = popUp(pop);
    const int count = entryCount(pop);
    std::vector<std::string> titles;
    titles.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        titles.push_back(combo->itemText(i).toStdString());
    }
    return titles;
}

void MainWindow::insertPopUpTitle(app::PopUp pop, const std::string& title, std::size_t index) {
    QComboBox* combo = popUp(pop);
    const QString text = toQString(title);
    const QString selected = combo->currentIndex() < 0 ? QString() : combo->currentText();
    const bool hadSelection = combo->currentIndex() >= 0;
    // One item per title: an existing one makes way for the new one.
    for (int found = combo->findText(text); found >= 0 && found < entryCount(pop);
         found = combo->findText(text)) {
        combo->removeItem(found);
    }
    const int position =
        static_cast<int>(std::min<std::size_t>(index, static_cast<std::size_t>(entryCount(pop))));
    combo->insertItem(position, text);
    // The selection stays on the item it was on.
    if (hadSelection) {
        combo->setCurrentIndex(combo->findText(selected));
    } else {
        combo->setCurrentIndex(combo->count() == 1 ? 0 : -1);
    }
}

void MainWindow::selectPopUpTitle(app::PopUp pop, const std::string& title) {
    QComboBox* combo = popUp(pop);
    if (const int found = combo->findText(toQString(title));
        found >= 0 && found < entryCount(pop)) {
        combo->setCurrentIndex(found);
    }
}

void MainWindow::selectPopUpIndex(app::PopUp pop, std::size_t index) {
    QComboBox* combo = popUp(pop);
    if (index < static_cast<std::size_t>(entryCount(pop))) {
        combo->setCurrentIndex(static_cast<int>(index));
    }
}

std::string MainWindow::selectedPopUpTitle(app::PopUp pop) const {
    const QComboBox* combo = popUp(pop);
    return combo->currentIndex() < 0 ? std::string() : combo->currentText().toStdString();
}

void MainWindow::removeAllPopUpItems(app::PopUp pop) {
    QComboBox* combo = popUp(pop);
    // The commands after the entries stay.
    for (int i = entryCount(pop); i > 0; --i) {
        combo->removeItem(0);
    }
}

void MainWindow::removePopUpItem(app::PopUp pop, std::size_t index) {
    if (index < static_cast<std::size_t>(entryCount(pop))) {
        popUp(pop)->removeItem(static_cast<int>(index));
    }
}

long MainWindow::selectedPopUpIndex(app::PopUp pop) const {
    const int current = popUp(pop)->currentIndex();
    return current < entryCount(pop) ? current : -1;
}

bool MainWindow::isChecked(app::CheckBox box) const { return m_checkBoxes[at(box)]->isChecked(); }

void MainWindow::setChecked(app::CheckBox box, bool on) { m_checkBoxes[at(box)]->setChecked(on); }

void MainWindow::setCheckBoxEnabled(app::CheckBox box, bool enabled) {
    m_checkBoxes[at(box)]->setEnabled(enabled);
}

double MainWindow::tableFieldHeight() const {
    // A tab that is not shown keeps the size it had when last shown; every page is as tall as
    // the one shown, and its fields fill it.
    const QTextEdit* table = m_fields[at(TextField::table)];
    if (!table->isVisible() && m_tabs->currentWidget() != nullptr) {
        return m_tabs->currentWidget()->height();
    }
    return table->height();
}

void MainWindow::placeCaretAtEnd() {
    m_expressionField->deselect();
    m_expressionField->end(false);
}

std::string MainWindow::selectedTabLabel() const {
    return m_tabs->tabText(m_tabs->currentIndex()).toStdString();
}

void MainWindow::selectTab(const std::string& label) {
    const QString wanted = toQString(label);
    for (int i = 0; i < m_tabs->count(); ++i) {
        if (m_tabs->tabText(i) == wanted) {
            m_tabs->setCurrentIndex(i);
            return;
        }
    }
}

void MainWindow::showMessage(const std::string& message) {
    if (message.empty()) {
        statusBar()->clearMessage();
    } else {
        statusBar()->showMessage(toQString(message));
    }
}

void MainWindow::runOnNextTurn(std::function<void()> work) {
    // The window is the timer's context: work for a window that is gone is dropped.
    QTimer::singleShot(0, this, std::move(work));
}

}  // namespace talvex::gui
