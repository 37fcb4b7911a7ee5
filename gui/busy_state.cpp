#include "gui/busy_state.h"

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QKeyEvent>
#include <QMainWindow>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>

namespace talvex::gui {

namespace {

constexpr int kProgressSteps = 1000;
constexpr int kTickMilliseconds = 25;

// What a person does with keys and the pointer; everything else (painting, resizing, timers)
// goes on while a calculation runs.
bool isInput(QEvent::Type type) {
    switch (type) {
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::ShortcutOverride:
        case QEvent::Shortcut:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::ContextMenu:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::DragEnter:
        case QEvent::Drop:
            return true;
        default:
            return false;
    }
}

}  // namespace

BusyState::BusyState(QMainWindow& window, QPushButton& rollButton)
    : QObject(&window), m_window(window), m_rollButton(rollButton) {
    m_progress = new QProgressBar;
    m_progress->setObjectName(QStringLiteral("calculationProgress"));
    m_progress->setRange(0, kProgressSteps);
    m_progress->setMaximumWidth(160);
    m_progress->setTextVisible(false);
    m_progress->setToolTip(
        QStringLiteral("How much of the work one calculation may take is spent"));
    m_progress->hide();
    m_window.statusBar()->addPermanentWidget(m_progress);
}

void BusyState::showBusy(bool busy) {
    if (busy) {
        m_rollText = m_rollButton.text();
        m_rollButton.setText(QStringLiteral("Cancel"));
        m_rollButton.setToolTip(QStringLiteral("Stop this calculation (Esc)"));
        m_progress->setValue(0);
        m_progress->show();
        m_window.statusBar()->showMessage(QStringLiteral("Calculating… Esc or Cancel stops it."));
        QApplication::setOverrideCursor(Qt::BusyCursor);
        return;
    }
    m_rollButton.setText(m_rollText.isEmpty() ? QStringLiteral("Roll") : m_rollText);
    m_rollButton.setToolTip(QString());
    m_progress->hide();
    m_window.statusBar()->clearMessage();
    QApplication::restoreOverrideCursor();
}

void BusyState::showProgress(double share) {
    m_progress->setValue(static_cast<int>(share * kProgressSteps));
}

void BusyState::stayResponsiveUntil(const std::function<bool()>& finished,
                                    const std::function<void()>& tick) {
    QEventLoop loop;
    QTimer timer;
    timer.setInterval(kTickMilliseconds);
    connect(&timer, &QTimer::timeout, &loop, [&] {
        tick();
        if (finished()) {
            loop.quit();
        }
    });
    qApp->installEventFilter(this);
    timer.start();
    // Returns early when the application quits; the runner then cancels what still runs.
    if (!finished()) {
        loop.exec();
    }
    qApp->removeEventFilter(this);
}

void BusyState::cancel() {
    if (m_runner != nullptr) {
        m_runner->cancel();
    }
}

bool BusyState::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::Close && watched == &m_window) {
        // Closing asks to quit, which waits for the calculation: stop it first.
        cancel();
        event->ignore();
        return true;
    }
    if (!isInput(type)) {
        return false;
    }
    if (type == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        cancel();
        return true;
    }
    // The Roll button, now Cancel, is the one control that still answers.
    if (watched == &m_rollButton && type != QEvent::Wheel && type != QEvent::ContextMenu) {
        return false;
    }
    return true;
}

}  // namespace talvex::gui
