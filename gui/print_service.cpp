#include "gui/print_service.h"

#include <QAbstractTextDocumentLayout>
#include <QFont>
#include <QPageLayout>
#include <QPageRanges>
#include <QPageSize>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPalette>
#include <QPrintDialog>
#include <QPrinter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextOption>
#include <QTransform>
#include <algorithm>
#include <cstddef>
#include <memory>
#include <numeric>
#include <utility>
#include <vector>

#include "gui/styled_document.h"

namespace talvex::gui {

namespace {

// All lengths below are points of the 504 by 720 page.
constexpr double kMargin = 30;
constexpr double kContentWidth = kPrintPageWidth - 2 * kMargin;
constexpr double kContentHeight = kPrintPageHeight - 2 * kMargin;
constexpr double kColumnGap = 18;
constexpr double kBandGap = 14;
// Reports shrink to fit the width, but not to nothing: a line too wide even at a quarter size
// (a long list of rolls) wraps instead, and leaves the other lines their size.
constexpr double kMinimumScale = 0.25;
// A band up to this height moves whole to the next page rather than being split.
constexpr double kKeepTogetherHeight = kContentHeight / 3;
constexpr double kReportPointSize = 9;
constexpr double kTitlePointSize = 13;
constexpr double kRollPointSize = 18;
constexpr double kTolerance = 1e-3;
// Half a device dot, in document units.
constexpr double kHair = 0.5;

[[nodiscard]] QFont printFont(double pointSize, bool bold) {
    QFont font = reportFont();
    font.setPointSizeF(pointSize);
    font.setBold(bold);
    return font;
}

// Points per unit of a document laid out on the device.
[[nodiscard]] double pointsPerDot(const QPaintDevice& device) {
    return 72.0 / device.logicalDpiX();
}

// Laid out in the device's own dots, so that what is measured is what prints.
[[nodiscard]] std::unique_ptr<QTextDocument> makeDocument(const core::StyledText& text,
                                                          const QFont& font, QPaintDevice& device) {
    auto document = std::make_unique<QTextDocument>();
    document->documentLayout()->setPaintDevice(&device);
    document->setDocumentMargin(0);
    document->setDefaultFont(font);
    // In screen units, which Qt scales to the device's dots itself.
    useReportTabStops(*document, font);
    writeStyledText(*document, text);
    return document;
}

void setWrapMode(QTextDocument& document, QTextOption::WrapMode mode) {
    QTextOption option = document.defaultTextOption();
    option.setWrapMode(mode);
    document.setDefaultTextOption(option);
}

// The width of the longest line, unwrapped, in document units, among the lines no wider than
// `limit`: wider ones wrap whatever the scale, so they do not shrink the rest.
[[nodiscard]] double naturalWidth(QTextDocument& document, double limit) {
    setWrapMode(document, QTextOption::NoWrap);
    document.setTextWidth(-1);
    double widest = 0;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QTextLayout* layout = block.layout();
        for (int i = 0; i < layout->lineCount(); ++i) {
            const double width = layout->lineAt(i).naturalTextWidth();
            if (width <= limit) {
                widest = std::max(widest, width);
            }
        }
    }
    return widest;
}

void wrapAt(QTextDocument& document, double width) {
    setWrapMode(document, QTextOption::WrapAtWordBoundaryOrAnywhere);
    document.setTextWidth(width);
}

struct Column {
    std::unique_ptr<QTextDocument> document;
    double x = 0;  // from the left edge of the content
    double width = 0;
};

// A strip across the content width: columns side by side, drawn at one scale.
struct Band {
    std::vector<Column> columns;
    double scale = 1;  // points per document unit
    double height = 0;
    // Where the band may be cut between pages, measured from its top: between lines of every
    // column at once. Ascending, ending with the height.
    std::vector<double> cuts;
};

void measure(Band& band) {
    std::vector<std::pair<double, double>> lines;
    for (const Column& column : band.columns) {
        const QTextDocument& document = *column.document;
        band.height = std::max(band.height, document.size().height() * band.scale);
        for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
            const QTextLayout* layout = block.layout();
            const double blockTop = layout->position().y();
            for (int i = 0; i < layout->lineCount(); ++i) {
                const QTextLine line = layout->lineAt(i);
                const double top = (blockTop + line.y()) * band.scale;
                lines.emplace_back(top, top + line.height() * band.scale);
            }
        }
    }
    std::sort(lines.begin(), lines.end());
    // Lines of the two columns that overlap make one group; a cut falls only between groups.
    for (const auto& [top, bottom] : lines) {
        if (!band.cuts.empty() && top < band.cuts.back() - kTolerance) {
            band.cuts.back() = std::max(band.cuts.back(), bottom);
        } else {
            band.cuts.push_back(bottom);
        }
    }
    if (band.cuts.empty() || band.cuts.back() < band.height - kTolerance) {
        band.cuts.push_back(band.height);
    }
}

// One column across the whole width at full size, wrapped there (the title and the roll).
[[nodiscard]] Band fullWidthBand(const core::StyledText& text, const QFont& font,
                                 QPaintDevice& device) {
    Band band;
    if (text.empty()) {
        return band;
    }
    band.scale = pointsPerDot(device);
    Column column{makeDocument(text, font, device), 0, kContentWidth};
    wrapAt(*column.document, kContentWidth / band.scale);
    band.columns.push_back(std::move(column));
    measure(band);
    return band;
}

// The non-empty texts side by side, each as wide as its longest line. When they are too wide
// together they shrink together, so that the two reports of a pair keep one size.
[[nodiscard]] Band columnsBand(const std::vector<const core::StyledText*>& texts, const QFont& font,
                               QPaintDevice& device) {
    Band band;
    for (const core::StyledText* text : texts) {
        if (!text->empty()) {
            band.columns.push_back(Column{makeDocument(*text, font, device)});
        }
    }
    if (band.columns.empty()) {
        return band;
    }
    const double count = static_cast<double>(band.columns.size());
    const double room = kContentWidth - kColumnGap * (count - 1);
    const double dot = pointsPerDot(device);
    std::vector<double> natural;
    for (const Column& column : band.columns) {
        natural.push_back(naturalWidth(*column.document, room / (kMinimumScale * dot)));
    }
    const double naturalTotal = std::accumulate(natural.begin(), natural.end(), 0.0);
    const double fit = naturalTotal * dot > room ? room / (naturalTotal * dot) : 1.0;
    band.scale = dot * std::max(fit, kMinimumScale);

    std::vector<double> widths;
    for (const double width : natural) {
        // Still too wide at the smallest scale: each column gets its share of the room.
        widths.push_back(naturalTotal * band.scale > room ? room * width / naturalTotal
                                                          : width * band.scale);
    }
    // Equal columns when each fits its half; otherwise packed from the left.
    const double slot = room / count;
    const bool slotsFit =
        std::all_of(widths.begin(), widths.end(), [&](double w) { return w <= slot; });
    double x = 0;
    for (std::size_t i = 0; i < band.columns.size(); ++i) {
        Column& column = band.columns[i];
        column.x = x;
        column.width = i + 1 == band.columns.size() ? kContentWidth - x
                       : slotsFit                   ? slot
                                                    : widths[i];
        x += column.width + kColumnGap;
        wrapAt(*column.document, column.width / band.scale);
    }
    measure(band);
    return band;
}

// Lays bands out one below the other, page after page, and draws the pages the device prints.
class PageFlow {
  public:
    PageFlow(QPagedPaintDevice& device, QPainter& painter)
        : m_device(device), m_painter(painter), m_ranges(device.pageRanges()) {
        // A page of another size gets the same page, scaled to fit and centred across.
        const double width = device.width();
        const double fit = std::min(width / kPrintPageWidth, device.height() / kPrintPageHeight);
        m_transform =
            QTransform::fromTranslate((width - kPrintPageWidth * fit) / 2, 0).scale(fit, fit);
        m_sheetUsed = printed();
    }

    void place(const Band& band) {
        if (band.columns.empty()) {
            return;
        }
        if (m_y > kMargin) {
            m_y += kBandGap;
            if (band.height <= kKeepTogetherHeight && m_y + band.height > bottom()) {
                nextPage();
            }
        }
        double from = 0;
        while (from < band.height - kTolerance) {
            double to = lastCutBefore(band, from + bottom() - m_y);
            if (to <= from + kTolerance) {
                if (m_y > kMargin) {
                    nextPage();
                    continue;
                }
                // A line taller than a page is cut where the page ends.
                to = std::min(band.height, from + kContentHeight);
            }
            draw(band, from, to);
            m_y += to - from;
            from = to;
            if (from < band.height - kTolerance) {
                nextPage();
            }
        }
    }

  private:
    [[nodiscard]] static double bottom() { return kMargin + kContentHeight; }

    [[nodiscard]] static double lastCutBefore(const Band& band, double limit) {
        const auto after = std::upper_bound(band.cuts.begin(), band.cuts.end(), limit);
        return after == band.cuts.begin() ? 0.0 : *(after - 1);
    }

    [[nodiscard]] bool printed() const { return m_ranges.isEmpty() || m_ranges.contains(m_page); }

    void nextPage() {
        ++m_page;
        m_y = kMargin;
        // Pages left out of the range take no sheet.
        if (printed()) {
            if (m_sheetUsed) {
                m_device.newPage();
            }
            m_sheetUsed = true;
        }
    }

    void draw(const Band& band, double from, double to) {
        if (!printed()) {
            return;
        }
        const double top = from / band.scale;
        const double height = (to - from) / band.scale;
        for (const Column& column : band.columns) {
            const QRectF clip(0, top, column.width / band.scale, height);
            m_painter.save();
            m_painter.setTransform(m_transform);
            m_painter.translate(kMargin + column.x, m_y);
            m_painter.scale(band.scale, band.scale);
            m_painter.translate(0, -top);
            m_painter.setClipRect(clip);
            QAbstractTextDocumentLayout::PaintContext context;
            // A hair inside the slice, so that the lines just above and below it, which touch
            // its edges, are left to their own pages.
            context.clip = clip.adjusted(0, kHair, 0, -kHair);
            // Plain text is black on paper whatever the screen's theme.
            context.palette.setColor(QPalette::Text, Qt::black);
            column.document->documentLayout()->draw(&m_painter, context);
            m_painter.restore();
        }
    }

    QPagedPaintDevice& m_device;
    QPainter& m_painter;
    QPageRanges m_ranges;
    QTransform m_transform;
    int m_page = 1;
    double m_y = kMargin;
    bool m_sheetUsed = false;
};

void renderBands(const std::vector<Band>& bands, QPagedPaintDevice& device) {
    QPainter painter;
    if (!painter.begin(&device)) {
        return;
    }
    PageFlow flow(device, painter);
    for (const Band& band : bands) {
        flow.place(band);
    }
}

}  // namespace

void usePrintPageSize(QPrinter& printer) {
    printer.setPageSize(QPageSize(QSizeF(kPrintPageWidth, kPrintPageHeight), QPageSize::Point,
                                  QStringLiteral("Talvex 7 x 10 in"), QPageSize::ExactMatch));
    printer.setPageOrientation(QPageLayout::Portrait);
    printer.setFullPage(true);
}

void renderPage(const app::PrintPage& page, QPagedPaintDevice& device) {
    const QFont report = printFont(kReportPointSize, false);
    std::vector<Band> bands;
    bands.push_back(fullWidthBand(page.expression, printFont(kTitlePointSize, true), device));
    bands.push_back(fullWidthBand(page.roll, printFont(kRollPointSize, true), device));
    bands.push_back(columnsBand({&page.statistics, &page.compareStatistics}, report, device));
    bands.push_back(columnsBand({&page.display1, &page.display2}, report, device));
    renderBands(bands, device);
}

void renderLog(const core::StyledText& log, QPagedPaintDevice& device) {
    std::vector<Band> bands;
    bands.push_back(columnsBand({&log}, printFont(kReportPointSize, false), device));
    renderBands(bands, device);
}

void QtPrintService::printPage(const app::PrintPage& page) {
    print([&page](QPrinter& printer) { renderPage(page, printer); });
}

void QtPrintService::printLog(const core::StyledText& log) {
    print([&log](QPrinter& printer) { renderLog(log, printer); });
}

void QtPrintService::print(const std::function<void(QPrinter&)>& render) {
    QPrinter systemPrinter(QPrinter::HighResolution);
    QPrinter& printer = m_printer != nullptr ? *m_printer : systemPrinter;
    usePrintPageSize(printer);
    QPrintDialog dialog(&printer, m_parent);
    dialog.setObjectName(QStringLiteral("printDialog"));
    // The page size is the layout's, not the person's to choose.
    dialog.setOption(QAbstractPrintDialog::PrintShowPageSize, false);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    // The dialogue lists only standard sizes and hands back the first of them in place of a
    // custom one.
    usePrintPageSize(printer);
    render(printer);
}

}  // namespace talvex::gui
