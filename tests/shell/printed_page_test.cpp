#include "shell/printed_page.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace ombrix::test {
namespace {

constexpr int kDotsPerInch = 96;
constexpr int kPoints = 12;

// Paper to look at, as large as a sheet of A4 within its margins.
QImage Painted(const std::vector<PrintedLine> &lines, int width = 724, int height = 1060)
{
    QImage paper(width, height, QImage::Format_Grayscale8);
    paper.setDotsPerMeterX(kDotsPerInch * 10'000 / 254);
    paper.setDotsPerMeterY(kDotsPerInch * 10'000 / 254);
    paper.fill(Qt::white);
    QPainter painter(&paper);
    EXPECT_TRUE(PaintLines(painter, lines, kPoints, [] { return false; }));
    return paper;
}

// The first and last column of dots with ink, in a band of rows.
std::pair<int, int> Ink(const QImage &paper, int top, int bottom)
{
    int first = paper.width();
    int last = -1;
    for (int y = top; y < std::min(bottom, paper.height()); ++y)
        for (int x = 0; x < paper.width(); ++x)
            if (qGray(paper.pixel(x, y)) < 200) {
                first = std::min(first, x);
                last = std::max(last, x);
            }
    return {first, last};
}

// Where a line ends that has only this one sign, behind blanks or behind letters.
int EndOf(const std::string &line)
{
    const QImage paper = Painted({{line}});
    return Ink(paper, 0, paper.height()).second;
}

}  // namespace

TEST(PrintedPage, KeepsItsColumnsWhateverStandsBeforeThem)
{
    EXPECT_EQ(EndOf("          |"), EndOf("iiiiiiiiii|"));
    EXPECT_EQ(EndOf("          |"), EndOf("MMMMMMMMMM|"));
    EXPECT_EQ(EndOf("          |"), EndOf("-20000 mV.|"));
    EXPECT_NE(EndOf("          |"), EndOf("         |"));
}

TEST(PrintedPage, UnderlinesALineFromItsFirstToItsLastColumn)
{
    const std::string line = "INPUT   200mV    2V   ";
    const QImage plain = Painted({{line}});
    const QImage lined = Painted({{line, true}});
    EXPECT_LT(Ink(plain, 0, plain.height()).second, Ink(lined, 0, lined.height()).second) << "also under blanks";
}

TEST(PrintedPage, ShrinksUntilItsLongestLineFits)
{
    const std::vector<PrintedLine> lines = {{std::string(119, '-') + "M"}, {"|"}};
    const QImage paper = Painted(lines);
    EXPECT_GE(Ink(paper, 0, paper.height()).second, paper.width() - 6) << "the last sign is there";
}

TEST(PrintedPage, AsksForPaperWhenItsHeightEnds)
{
    QImage paper(724, 200, QImage::Format_Grayscale8);
    QPainter painter(&paper);
    int pages = 1;
    EXPECT_TRUE(PaintLines(painter, std::vector<PrintedLine>(30, {"a line"}), kPoints, [&] { return ++pages > 0; }));
    EXPECT_GE(pages, 3);
    EXPECT_FALSE(PaintLines(painter, std::vector<PrintedLine>(30, {"a line"}), kPoints, [] { return false; }));
}

}  // namespace ombrix::test
