#include "gui/print_service.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/styled_text.h"

namespace talvex::gui {
namespace {

using core::StyledText;
using core::TextAttributes;

constexpr TextAttributes kBlack{core::Color{0, 0, 0}};
constexpr TextAttributes kBlue{core::Color{0, 0, 200}};
constexpr TextAttributes kCentredRed{core::Color{200, 0, 0}, core::Alignment::Center};
// The layout's margin on the 504 by 720 point page.
constexpr double kMargin = 30;

// What poppler-utils (an independent reader) makes of a printed file.
QString runPoppler(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(30000) || process.exitCode() != 0) {
        ADD_FAILURE() << program.toStdString() << " failed (Debian package poppler-utils): "
                      << process.readAllStandardError().toStdString();
        return {};
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString pdfInfo(const QString& file) { return runPoppler(QStringLiteral("pdfinfo"), {file}); }

int pageCount(const QString& file) {
    const QRegularExpressionMatch match =
        QRegularExpression(QStringLiteral(R"(Pages:\s+(\d+))")).match(pdfInfo(file));
    return match.hasMatch() ? match.captured(1).toInt() : 0;
}

// The text in reading order, columns kept apart by blanks; one page or all of them.
QString pdfText(const QString& file, int page = 0) {
    QStringList arguments{QStringLiteral("-layout")};
    if (page > 0) {
        arguments << QStringLiteral("-f") << QString::number(page) << QStringLiteral("-l")
                  << QString::number(page);
    }
    arguments << file << QStringLiteral("-");
    return runPoppler(QStringLiteral("pdftotext"), arguments);
}

// A word as printed: its box in points from the page's top-left corner.
struct Word {
    QString text;
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

std::vector<Word> pdfWords(const QString& file) {
    const QString html = runPoppler(QStringLiteral("pdftotext"),
                                    {QStringLiteral("-bbox"), file, QStringLiteral("-")});
    static const QRegularExpression pattern(
        QStringLiteral(R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" )re"
                       R"re(yMax="([\d.]+)">([^<]*)</word>)re"));
    std::vector<Word> words;
    for (const QRegularExpressionMatch& match : pattern.globalMatch(html)) {
        QString text = match.captured(5);
        text.replace(QStringLiteral("&lt;"), QStringLiteral("<"))
            .replace(QStringLiteral("&gt;"), QStringLiteral(">"))
            .replace(QStringLiteral("&quot;"), QStringLiteral("\""))
            .replace(QStringLiteral("&amp;"), QStringLiteral("&"));
        words.push_back(Word{text, match.captured(1).toDouble(), match.captured(2).toDouble(),
                             match.captured(3).toDouble(), match.captured(4).toDouble()});
    }
    return words;
}

// The nth word with this text, in reading order; a word with no text when there is none.
Word findWord(const std::vector<Word>& words, const QString& text, int nth = 1) {
    int seen = 0;
    for (const Word& word : words) {
        if (word.text == text && ++seen == nth) {
            return word;
        }
    }
    ADD_FAILURE() << "no word " << text.toStdString() << " (" << nth << ")";
    return {};
}

// The number of ways of rolling each sum of `dice` six-sided dice, from `dice` up.
std::vector<long> sumCounts(int dice) {
    std::vector<long> counts{1};
    for (int die = 0; die < dice; ++die) {
        std::vector<long> next(counts.size() + 6, 0);
        for (std::size_t sum = 0; sum < counts.size(); ++sum) {
            for (std::size_t face = 1; face <= 6; ++face) {
                next[sum + face] += counts[sum];
            }
        }
        counts = next;
    }
    return {counts.begin() + dice, counts.end()};
}

QString percent(double value) {
    QString text = QString::number(value, 'f', 2);
    while (text.endsWith(u'0')) {
        text.chop(1);
    }
    if (text.endsWith(u'.')) {
        text.chop(1);
    }
    return text + u'%';
}

// A table as the display fields show one: from the highest sum down, a bar as long as the
// sum's chance, the sum, its chance and the chance of at least that sum.
StyledText table(int dice, int plus = 0) {
    const std::vector<long> counts = sumCounts(dice);
    double total = 0;
    long most = 0;
    for (const long count : counts) {
        total += static_cast<double>(count);
        most = std::max(most, count);
    }
    StyledText text;
    double atLeast = 0;
    for (std::size_t i = counts.size(); i-- > 0;) {
        const double chance = 100.0 * static_cast<double>(counts[i]) / total;
        atLeast += chance;
        const auto bar = static_cast<qsizetype>(
            std::lround(10.0 * static_cast<double>(counts[i]) / static_cast<double>(most)));
        text.append(QStringLiteral("%1%2     %3     %4\n")
                        .arg(QString(bar, u'|'))
                        .arg(static_cast<int>(i) + dice + plus)
                        .arg(percent(chance), percent(atLeast))
                        .toStdString(),
                    i % 2 == 0 ? kBlack : kBlue);
    }
    return text;
}

// The statistics block as the statistics fields show it.
StyledText statistics(const std::string& mean, const std::string& deviation,
                      const std::string& range, const std::string& mode) {
    StyledText text;
    text.append("Mean:\t\t" + mean + "\nStand. Dev.:\t" + deviation + "\nRange:      \t" + range +
                    "\nMedian:    \t" + mean + "\nMode:\t\t" + mode + "\n",
                kBlack);
    return text;
}

app::PrintPage samplePage() {
    app::PrintPage page;
    page.expression = StyledText("3d6", kBlack);
    page.roll = StyledText("14\n", kCentredRed);
    page.statistics = statistics("10.5", "2.96", "[3..18]", "{10, 11}");
    page.compareStatistics = statistics("8", "2.42", "[3..13]", "8");
    page.display1 = table(3);
    page.display2 = table(2, 1);
    return page;
}

class PrintServiceTest : public ::testing::Test {
  protected:
    [[nodiscard]] QString pdfPath(const char* name) const {
        return m_dir.filePath(QLatin1String(name));
    }

    // A printer writing the 504 by 720 point pages into a PDF file of the temporary folder.
    [[nodiscard]] std::unique_ptr<QPrinter> pdfPrinter(const char* name) const {
        auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
        printer->setOutputFormat(QPrinter::PdfFormat);
        printer->setOutputFileName(pdfPath(name));
        usePrintPageSize(*printer);
        return printer;
    }

    // Answers the print dialogue from the event loop it runs; returns whether it was answered.
    // A dialogue that cannot be found is closed after a while, so that the test ends.
    std::shared_ptr<bool> answerPrintDialog(std::function<void(QPrintDialog&)> answer) {
        auto answered = std::make_shared<bool>(false);
        m_poll = std::make_unique<QTimer>();
        QTimer* poll = m_poll.get();
        auto waited = std::make_shared<QElapsedTimer>();
        waited->start();
        poll->setInterval(10);
        QObject::connect(poll, &QTimer::timeout, poll, [poll, waited, answered, answer] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                auto* dialog = qobject_cast<QPrintDialog*>(widget);
                if (dialog != nullptr && dialog->isVisible() &&
                    dialog->objectName() == QStringLiteral("printDialog")) {
                    poll->stop();
                    *answered = true;
                    answer(*dialog);
                    return;
                }
            }
            if (waited->elapsed() > 20000) {
                poll->stop();
                if (QWidget* modal = QApplication::activeModalWidget()) {
                    modal->close();
                }
            }
        });
        poll->start();
        return answered;
    }

    QTemporaryDir m_dir;
    std::unique_ptr<QTimer> m_poll;
};

TEST_F(PrintServiceTest, APageIsSevenByTenInches) {
    const auto printer = pdfPrinter("page.pdf");
    renderPage(samplePage(), *printer);
    EXPECT_TRUE(pdfInfo(pdfPath("page.pdf")).contains(QStringLiteral("504 x 720 pts")))
        << pdfInfo(pdfPath("page.pdf")).toStdString();
    EXPECT_EQ(pageCount(pdfPath("page.pdf")), 1);
}

TEST_F(PrintServiceTest, EveryFieldOfThePageIsPrinted) {
    const auto printer = pdfPrinter("page.pdf");
    const app::PrintPage page = samplePage();
    renderPage(page, *printer);
    const QString text = pdfText(pdfPath("page.pdf"));
    // Every line of every field, whole and in its order (tabs and blanks come out as blanks).
    for (const StyledText* field : {&page.expression, &page.roll, &page.statistics,
                                    &page.compareStatistics, &page.display1, &page.display2}) {
        qsizetype previous = -1;
        for (const QString& line : QString::fromStdString(field->string()).split(u'\n')) {
            QStringList words;
            for (const QString& word :
                 line.split(QRegularExpression(QStringLiteral(R"(\s+)")), Qt::SkipEmptyParts)) {
                words << QRegularExpression::escape(word);
            }
            if (words.isEmpty()) {
                continue;
            }
            const QRegularExpression pattern(words.join(QStringLiteral(R"(\s+)")));
            const QRegularExpressionMatch match = pattern.match(text, previous + 1);
            ASSERT_TRUE(match.hasMatch()) << "line " << line.toStdString() << "\n"
                                          << text.toStdString();
            previous = match.capturedStart();
        }
    }
}

TEST_F(PrintServiceTest, TheFieldsReadFromTheTitleDownAndTheReportsSideBySide) {
    const auto printer = pdfPrinter("page.pdf");
    renderPage(samplePage(), *printer);
    const std::vector<Word> words = pdfWords(pdfPath("page.pdf"));
    ASSERT_FALSE(words.empty());

    // The expression is the title: first on the page and larger than the reports.
    const Word title = findWord(words, QStringLiteral("3d6"));
    for (const Word& word : words) {
        EXPECT_GE(word.top, title.top - 0.5) << word.text.toStdString();
    }
    const Word mean = findWord(words, QStringLiteral("10.5"));
    EXPECT_GT(title.bottom - title.top, mean.bottom - mean.top);

    // The roll below it, larger still and centred on the page.
    const Word roll = findWord(words, QStringLiteral("14"));
    EXPECT_GT(roll.top, title.bottom - 0.5);
    EXPECT_GT(roll.bottom - roll.top, title.bottom - title.top);
    EXPECT_NEAR((roll.left + roll.right) / 2, 252, 1);

    // The two statistics blocks on the same lines, the comparison's to the right.
    const Word deviation = findWord(words, QStringLiteral("2.96"));
    const Word compareDeviation = findWord(words, QStringLiteral("2.42"));
    EXPECT_GT(mean.top, roll.bottom - 0.5);
    EXPECT_NEAR(compareDeviation.top, deviation.top, 0.5);
    EXPECT_GT(compareDeviation.left, deviation.right + 18);
    // Their values in one column, after the labels' tabs.
    const Word range = findWord(words, QStringLiteral("[3..18]"));
    EXPECT_NEAR(deviation.left, mean.left, 0.5);
    EXPECT_NEAR(range.left, mean.left, 0.5);

    // The two tables below them, their rows side by side: the second row of each.
    const Word table1 = findWord(words, QStringLiteral("1.85%"));
    const Word table2 = findWord(words, QStringLiteral("8.33%"));
    EXPECT_GT(table1.top, range.bottom);
    EXPECT_NEAR(table1.top, table2.top, 0.5);
    EXPECT_GT(table2.left, table1.right + 18);
    // Each comparison column starts halfway across, under the other.
    const Word compareLabel = findWord(words, QStringLiteral("Mean:"), 2);
    const Word table2First = findWord(words, QStringLiteral("||13"));
    EXPECT_NEAR(compareLabel.left, 252 + 9, 0.5);
    EXPECT_NEAR(table2First.left, compareLabel.left, 0.5);

    // Nothing outside the margins.
    for (const Word& word : words) {
        EXPECT_GE(word.left, kMargin - 1) << word.text.toStdString();
        EXPECT_LE(word.right, 504 - kMargin + 1) << word.text.toStdString();
        EXPECT_LE(word.bottom, 720 - kMargin + 1) << word.text.toStdString();
    }
}

TEST_F(PrintServiceTest, WideTablesAreScaledDownToFitTheWidth) {
    // Rows of about 100 characters each, far wider than half a page at full size.
    const auto wide = [](const char* name) {
        StyledText text;
        for (int row = 0; row < 12; ++row) {
            std::string line = std::string(name) + "-row" + std::to_string(row);
            for (int cell = 0; cell < 8; ++cell) {
                line += "\t" + std::to_string(row * 100 + cell) + ".25%";
            }
            line += " END" + std::to_string(row) + "\n";
            text.append(line, kBlack);
        }
        return text;
    };
    app::PrintPage page;
    page.display1 = wide("left");
    page.display2 = wide("right");
    const auto printer = pdfPrinter("wide.pdf");
    renderPage(page, *printer);

    const std::vector<Word> words = pdfWords(pdfPath("wide.pdf"));
    for (const Word& word : words) {
        EXPECT_GE(word.left, kMargin - 1) << word.text.toStdString();
        EXPECT_LE(word.right, 504 - kMargin + 1) << word.text.toStdString();
    }
    // Each row whole on one line: its first and its last word side by side.
    for (int row = 0; row < 12; ++row) {
        const Word first = findWord(words, QStringLiteral("left-row%1").arg(row));
        const Word last = findWord(words, QStringLiteral("END%1").arg(row));
        EXPECT_NEAR(first.top, last.top, 0.5) << row;
        const Word right = findWord(words, QStringLiteral("right-row%1").arg(row));
        EXPECT_NEAR(right.top, first.top, 0.5) << row;
        EXPECT_GT(right.left, last.right);
    }
}

TEST_F(PrintServiceTest, ALongPageContinuesOnTheNextPagesWithoutLosingARow) {
    app::PrintPage page = samplePage();
    page.display1 = table(20);
    const auto printer = pdfPrinter("long.pdf");
    renderPage(page, *printer);
    const QString file = pdfPath("long.pdf");
    ASSERT_GE(pageCount(file), 2);
    // Every one of the 101 sums exactly once.
    const QString text = pdfText(file);
    for (int sum = 20; sum <= 120; ++sum) {
        const QRegularExpression row(
            QStringLiteral(R"((?:^|\s)\|*%1\s+[\d.]+%\s+[\d.]+%)").arg(sum),
            QRegularExpression::MultilineOption);
        int found = 0;
        for (QRegularExpressionMatchIterator it = row.globalMatch(text); it.hasNext(); it.next()) {
            ++found;
        }
        EXPECT_EQ(found, 1) << sum;
    }
}

TEST_F(PrintServiceTest, ALongLogFlowsOntoSeveralPages) {
    StyledText log;
    for (int line = 1; line <= 300; ++line) {
        log.append(QStringLiteral("Roll %1 of 3d6:\t%2\n")
                       .arg(line, 3, 10, QLatin1Char('0'))
                       .arg(3 + line % 16)
                       .toStdString(),
                   line % 2 == 0 ? kBlue : kBlack);
    }
    const auto printer = pdfPrinter("log.pdf");
    renderLog(log, *printer);
    const QString file = pdfPath("log.pdf");
    EXPECT_TRUE(pdfInfo(file).contains(QStringLiteral("504 x 720 pts")));
    const int pages = pageCount(file);
    ASSERT_GE(pages, 3);
    EXPECT_TRUE(pdfText(file, 1).contains(QStringLiteral("Roll 001 of 3d6:")));
    EXPECT_TRUE(pdfText(file, pages).contains(QStringLiteral("Roll 300 of 3d6:")));
    // No line lost or printed twice where the pages break.
    const QString text = pdfText(file);
    for (int line = 1; line <= 300; ++line) {
        EXPECT_EQ(text.count(QStringLiteral("Roll %1 of").arg(line, 3, 10, QLatin1Char('0'))), 1)
            << line;
    }
}

TEST_F(PrintServiceTest, OnlyThePagesInTheChosenRangeArePrinted) {
    StyledText log;
    for (int line = 1; line <= 300; ++line) {
        log.append(QStringLiteral("Roll %1:\t%2\n").arg(line).arg(3 + line % 16).toStdString(),
                   kBlack);
    }
    const auto whole = pdfPrinter("whole.pdf");
    renderLog(log, *whole);
    const auto second = pdfPrinter("second.pdf");
    second->setFromTo(2, 3);
    renderLog(log, *second);
    ASSERT_EQ(pageCount(pdfPath("second.pdf")), 2);
    ASSERT_TRUE(pdfText(pdfPath("whole.pdf"), 3).contains(QStringLiteral("Roll ")));
    EXPECT_EQ(pdfText(pdfPath("second.pdf"), 1), pdfText(pdfPath("whole.pdf"), 2));
    EXPECT_EQ(pdfText(pdfPath("second.pdf"), 2), pdfText(pdfPath("whole.pdf"), 3));
}

TEST_F(PrintServiceTest, ALineTooLongToScaleWrapsRatherThanLeavingThePage) {
    StyledText log("Roll of 1000d6:", kBlack);
    for (int die = 0; die < 1000; ++die) {
        log.append(" d" + std::to_string(die), kBlack);
    }
    log.append("\nMean:\t\t3500\n", kBlack);
    const auto printer = pdfPrinter("wrapped.pdf");
    renderLog(log, *printer);
    const std::vector<Word> words = pdfWords(pdfPath("wrapped.pdf"));
    for (const Word& word : words) {
        EXPECT_GE(word.left, kMargin - 1) << word.text.toStdString();
        EXPECT_LE(word.right, 504 - kMargin + 1) << word.text.toStdString();
    }
    for (int die = 0; die < 1000; ++die) {
        const QString name = QStringLiteral("d%1").arg(die);
        EXPECT_EQ(std::count_if(words.begin(), words.end(),
                                [&](const Word& word) { return word.text == name; }),
                  1)
            << die;
    }
    // The short lines keep their size: the long one alone wraps.
    const Word mean = findWord(words, QStringLiteral("3500"));
    EXPECT_GT(mean.bottom - mean.top, 6);
}

TEST_F(PrintServiceTest, AnEmptyPagePrintsOneBlankPage) {
    const auto printer = pdfPrinter("empty.pdf");
    renderPage(app::PrintPage{}, *printer);
    EXPECT_EQ(pageCount(pdfPath("empty.pdf")), 1);
    EXPECT_TRUE(pdfText(pdfPath("empty.pdf")).trimmed().isEmpty());
}

TEST_F(PrintServiceTest, AcceptingThePrintDialoguePrintsThePage) {
    QWidget window;
    const auto printer = pdfPrinter("dialogue.pdf");
    QtPrintService service(&window, printer.get());
    const auto answered = answerPrintDialog([](QPrintDialog& dialog) { dialog.accept(); });
    service.printPage(samplePage());
    ASSERT_TRUE(*answered);
    const QString file = pdfPath("dialogue.pdf");
    ASSERT_TRUE(QFileInfo::exists(file));
    EXPECT_TRUE(pdfInfo(file).contains(QStringLiteral("504 x 720 pts")))
        << pdfInfo(file).toStdString();
    EXPECT_TRUE(pdfText(file).contains(QStringLiteral("[3..18]")));
}

TEST_F(PrintServiceTest, AcceptingThePrintDialoguePrintsTheLog) {
    const auto printer = pdfPrinter("log.pdf");
    QtPrintService service(nullptr, printer.get());
    const auto answered = answerPrintDialog([](QPrintDialog& dialog) { dialog.accept(); });
    service.printLog(StyledText("Roll of 2d6:\t7\n", kBlack));
    ASSERT_TRUE(*answered);
    EXPECT_TRUE(pdfText(pdfPath("log.pdf")).contains(QStringLiteral("Roll of 2d6:")));
}

TEST_F(PrintServiceTest, CancellingThePrintDialogueWritesNothing) {
    QWidget window;
    const auto printer = pdfPrinter("cancelled.pdf");
    QtPrintService service(&window, printer.get());
    auto answered = answerPrintDialog([](QPrintDialog& dialog) { dialog.reject(); });
    service.printPage(samplePage());
    EXPECT_TRUE(*answered);
    answered = answerPrintDialog([](QPrintDialog& dialog) { dialog.reject(); });
    service.printLog(StyledText("Roll of 2d6:\t7\n", kBlack));
    EXPECT_TRUE(*answered);
    EXPECT_FALSE(QFileInfo::exists(pdfPath("cancelled.pdf")));
}

}  // namespace
}  // namespace talvex::gui
