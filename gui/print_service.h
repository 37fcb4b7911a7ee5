#pragma once

#include <functional>

#include "app/ports.h"
#include "core/styled_text.h"

class QPagedPaintDevice;
class QPrinter;
class QWidget;

namespace talvex::gui {

// Every print is laid out on a page of 7 by 10 inches, in points.
inline constexpr double kPrintPageWidth = 504;
inline constexpr double kPrintPageHeight = 720;

// Gives the printer that page, edge to edge: the layout keeps margins of its own.
void usePrintPageSize(QPrinter& printer);

// The page of results: the expression as a title, the roll centred below it, the statistics and
// the comparison statistics side by side, then the two display fields side by side. Columns too
// wide for the page are scaled down together, to a quarter size at the least (a line wider than
// that wraps). What does not fit on one page continues on the next, broken between lines. A
// device whose page is not 504 by 720 points gets the same layout scaled to fit. Honours the
// device's page ranges.
void renderPage(const app::PrintPage& page, QPagedPaintDevice& device);

// The whole log in the report font, on as many pages as it takes.
void renderLog(const core::StyledText& log, QPagedPaintDevice& device);

// Printing through Qt's print dialogue ("printDialog"), which is modal over the parent; nothing
// prints when it is cancelled.
class QtPrintService final : public app::PrintService {
  public:
    // A printer, when given, is used instead of the system's default (tests print to PDF through
    // it); it must outlive the service.
    explicit QtPrintService(QWidget* parent, QPrinter* printer = nullptr)
        : m_parent(parent), m_printer(printer) {}

    void printPage(const app::PrintPage& page) override;
    void printLog(const core::StyledText& log) override;

  private:
    // Renders onto the printer once the person has accepted the dialogue.
    void print(const std::function<void(QPrinter&)>& render);

    QWidget* m_parent;
    QPrinter* m_printer;
};

}  // namespace talvex::gui
