// SPDX-License-Identifier: MIT
#include "inspector/line_chain.h"

#include <QTest>

#include <algorithm>
#include <cstring>

using namespace plyra;

namespace {

// n free lines, joined a[0] -> a[1] -> ... when chained.
std::vector<MorphLine::Ptr> makeLines(int n, bool chained)
{
    std::vector<MorphLine::Ptr> lines;
    for (int i = 0; i < n; ++i) {
        lines.push_back(MorphLine::create());
        if (chained && i > 0)
            lines[static_cast<size_t>(i - 1)]->attachLineAtEnd(lines.back(), nullptr);
    }
    return lines;
}

bool sameBits(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

class LineChainTest : public QObject {
    Q_OBJECT

private slots:
    void walksAndComparesAlongChains()
    {
        const auto chain = makeLines(3, true);
        const auto other = makeLines(2, true);
        QVERIFY(isLineDownChain(*chain[0], *chain[2]));
        QVERIFY(isLineDownChain(*chain[0], *chain[1]));
        QVERIFY(!isLineDownChain(*chain[2], *chain[0]));
        QVERIFY(!isLineDownChain(*chain[0], *chain[0]));
        QVERIFY(!isLineDownChain(*chain[0], *other[1]));
        QCOMPARE(compareLinesAlongChain(*chain[0], *chain[2]), ChainOrder::Ascending);
        QCOMPARE(compareLinesAlongChain(*chain[2], *chain[1]), ChainOrder::Descending);
        QCOMPARE(compareLinesAlongChain(*chain[1], *other[0]), ChainOrder::Same);
        QCOMPARE(compareLinesAlongChain(*chain[1], *chain[1]), ChainOrder::Same);
    }

    void countsSelectedSuccessorsUpToTheFirstGap()
    {
        const auto c = makeLines(5, true);
        QCOMPARE(countSelectedSuccessors(*c[0], {c[0], c[1], c[2], c[3], c[4]}), 4);
        QCOMPARE(countSelectedSuccessors(*c[1], {c[0], c[1], c[2], c[3], c[4]}), 3);
        QCOMPARE(countSelectedSuccessors(*c[0], {c[0], c[1], c[3], c[4]}), 1);
        QCOMPARE(countSelectedSuccessors(*c[0], {c[0], c[2], c[3]}), 0);
        QCOMPARE(countSelectedSuccessors(*c[4], {c[0], c[1], c[2], c[3], c[4]}), 0);
    }

    void ringsEndTheWalks()
    {
        auto ring = makeLines(3, true);
        const auto outsider = MorphLine::create();
        ring[2]->attachLineAtEnd(ring[0], nullptr);
        QCOMPARE(ring[0]->attachedLineAtStart(), ring[2]);
        QVERIFY(!isLineDownChain(*ring[0], *outsider));
        QVERIFY(isLineDownChain(*ring[0], *ring[2]));
        QCOMPARE(countSelectedSuccessors(*ring[0], ring), 3);
        QCOMPARE(sortLinesAlongChain(ring).size(), size_t(3));
        ring[2]->disconnectLineAtEnd(nullptr); // let the lines go
    }

    void sortKeepsEachChainTogetherInOrder()
    {
        const auto a = makeLines(4, true);
        const auto b = makeLines(3, true);
        const auto loose = makeLines(2, false);
        // A selection order that a plain sort by the comparison could leave scattered.
        const std::vector<MorphLine::Ptr> selection = {a[3], loose[0], b[2], a[1], b[0], loose[1], a[0], b[1], a[2]};
        const auto sorted = sortLinesAlongChain(selection);
        const std::vector<MorphLine::Ptr> expected = {a[0], a[1], a[2], a[3], loose[0], b[0], b[1], b[2], loose[1]};
        QVERIFY(sorted == expected);
        for (size_t i = 0; i < sorted.size(); ++i)
            for (size_t j = i + 1; j < sorted.size(); ++j)
                QVERIFY(compareLinesAlongChain(*sorted[i], *sorted[j]) != ChainOrder::Descending);
    }

    void spreadsInSinglePrecision_data()
    {
        QTest::addColumn<float>("sB");
        QTest::addColumn<float>("sS");
        QTest::addColumn<float>("eB");
        QTest::addColumn<float>("eS");
        QTest::addColumn<int>("n");
        QTest::newRow("four lines 0..0.8") << 0.0f << 0.5f << 0.8f << 1.0f << 4;
        QTest::newRow("three lines, thirds") << 0.1f << 0.3f << 0.7f << 0.9f << 3;
        QTest::newRow("backwards wave") << 0.9f << 1.0f << 0.0f << 0.2f << 7;
        QTest::newRow("one line") << 0.3f << 0.6f << 0.2f << 0.9f << 1;
    }

    void spreadsInSinglePrecision()
    {
        QFETCH(float, sB);
        QFETCH(float, sS);
        QFETCH(float, eB);
        QFETCH(float, eS);
        QFETCH(int, n);
        const MoveTimes stroke{sB, sS, eB, eS};
        for (int k = 0; k < n; ++k) {
            const MoveTimes t = spreadAlongChain(stroke, k, n);
            const double f0 = double(k) / n;
            const double f1 = double(k + 1) / n;
            QVERIFY(std::abs(t.startBegin - (sB + (eB - sB) * f0)) < 1e-6);
            QVERIFY(std::abs(t.startStop - (sS + (eS - sS) * f0)) < 1e-6);
            QVERIFY(std::abs(t.endBegin - (sB + (eB - sB) * f1)) < 1e-6);
            QVERIFY(std::abs(t.endStop - (sS + (eS - sS) * f1)) < 1e-6);
            // A line's end and the next line's start are one point: the same time, bit for bit.
            if (k + 1 < n) {
                const MoveTimes next = spreadAlongChain(stroke, k + 1, n);
                QVERIFY(sameBits(t.endBegin, next.startBegin));
                QVERIFY(sameBits(t.endStop, next.startStop));
            }
        }
        const MoveTimes first = spreadAlongChain(stroke, 0, n);
        QVERIFY(sameBits(first.startBegin, sB) && sameBits(first.startStop, sS));
        if (n == 1)
            QVERIFY(sameBits(first.endBegin, eB) && sameBits(first.endStop, eS));
    }
};

QTEST_MAIN(LineChainTest)
#include "line_chain_test.moc"
