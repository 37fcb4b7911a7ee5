#include "gui/shell_windows.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "gui/application_icon.h"
#include "gui/help_pages.h"
#include "gui/main_window.h"
#include "gui/styled_document.h"

namespace talvex::gui {

ShellWindows::ShellWindows(MainWindow& window) : m_window(window) {}

void ShellWindows::terminate() {
    m_terminationRequested = true;
    emit terminating();
}

void ShellWindows::setAboutVersionText(const std::string& text) {
    m_versionText = toQString(text);
    if (m_aboutVersion != nullptr) {
        m_aboutVersion->setText(m_versionText);
    }
}

void ShellWindows::selectHelpTab(const std::string& label) {
    m_helpTab = toQString(label);
    applyHelpTab();
}

void ShellWindows::showLinks(bool shown, const std::string& menuItemTitle) {
    m_window.setLinksShown(shown, toQString(menuItemTitle));
}

QDialog& ShellWindows::aboutWindow() {
    if (m_about == nullptr) {
        auto* about = new QDialog(&m_window);
        about->setObjectName(QStringLiteral("aboutWindow"));
        about->setWindowTitle(QStringLiteral("About Talvex"));
        auto* layout = new QVBoxLayout(about);
        auto* icon = new QLabel;
        icon->setPixmap(applicationIcon().pixmap(96, 96));
        icon->setAlignment(Qt::AlignHCenter);
        auto* name = new QLabel(QStringLiteral("Talvex"));
        name->setObjectName(QStringLiteral("aboutNameLabel"));
        QFont nameFont = name->font();
        nameFont.setPointSizeF(nameFont.pointSizeF() * 1.8);
        nameFont.setBold(true);
        name->setFont(nameFont);
        name->setAlignment(Qt::AlignHCenter);
        m_aboutVersion = new QLabel(m_versionText);
        m_aboutVersion->setObjectName(QStringLiteral("aboutVersionLabel"));
        m_aboutVersion->setAlignment(Qt::AlignHCenter);
        auto* blurb = new QLabel(QStringLiteral("Exact probabilities of dice expressions."));
        blurb->setAlignment(Qt::AlignHCenter);
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
        connect(buttons, &QDialogButtonBox::rejected, about, &QDialog::close);
        layout->addWidget(icon);
        layout->addWidget(name);
        layout->addWidget(m_aboutVersion);
        layout->addWidget(blurb);
        layout->addWidget(buttons);
        m_about = about;
    }
    return *m_about;
}

QWidget& ShellWindows::helpWindow() {
    if (m_help == nullptr) {
        auto* help = new QWidget(&m_window, Qt::Window);
        help->setObjectName(QStringLiteral("helpWindow"));
        help->setWindowTitle(QStringLiteral("Talvex Help"));
        auto* layout = new QVBoxLayout(help);
        m_helpTabs = new QTabWidget;
        m_helpTabs->setObjectName(QStringLiteral("helpTabs"));
        for (const HelpPage& page : helpPages()) {
            auto* browser = new QTextBrowser;
            browser->setOpenExternalLinks(false);
            browser->setHtml(QString::fromUtf8(page.html));
            m_helpTabs->addTab(browser, QString::fromLatin1(page.label));
        }
        layout->addWidget(m_helpTabs);
        help->resize(760, 640);
        m_help = help;
        applyHelpTab();
    }
    return *m_help;
}

void ShellWindows::applyHelpTab() {
    if (m_helpTabs == nullptr) {
        return;
    }
    for (int i = 0; i < m_helpTabs->count(); ++i) {
        if (m_helpTabs->tabText(i) == m_helpTab) {
            m_helpTabs->setCurrentIndex(i);
            return;
        }
    }
}

void ShellWindows::showAbout() {
    QDialog& about = aboutWindow();
    about.show();
    about.raise();
    about.activateWindow();
}

void ShellWindows::showHelp() {
    QWidget& help = helpWindow();
    help.show();
    help.raise();
    help.activateWindow();
}

}  // namespace talvex::gui
