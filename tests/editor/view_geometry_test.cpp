// SPDX-License-Identifier: MIT
#include "editor/image_pyramid.h"
#include "editor/line_damage.h"
#include "editor/scaled_image_cache.h"
#include "editor/view_geometry.h"

#include <QPainter>
#include <QTest>

#include <cmath>

using namespace plyra;

Q_DECLARE_METATYPE(plyra::Point)
Q_DECLARE_METATYPE(plyra::ViewRect)

/// The editor's geometry in single precision, its drawing caches and its damage regions,
/// without a widget.
class ViewGeometryTest : public QObject {
    Q_OBJECT

private slots:
    void squaredDistanceToSegment_data();
    void squaredDistanceToSegment();
    void segmentIntersectsRect_data();
    void segmentIntersectsRect();
    void unionRect_data();
    void unionRect();
    void mappingRoundTrip();
    void displaySize_data();
    void displaySize();
    void pyramidHalvesByAveraging();
    void hugeViewKeepsOnlyWhatIsVisible();
    void damageCoversOnlyWhatChanged();
};

void ViewGeometryTest::squaredDistanceToSegment_data()
{
    QTest::addColumn<Point>("p");
    QTest::addColumn<Point>("a");
    QTest::addColumn<Point>("b");
    QTest::addColumn<float>("expected");
    const Point a{10, 10};
    const Point b{30, 10};
    QTest::newRow("above the middle") << Point{20, 15} << a << b << 25.0f;
    QTest::newRow("beyond the end") << Point{33, 14} << a << b << 25.0f;
    QTest::newRow("before the start") << Point{6, 7} << a << b << 25.0f;
    QTest::newRow("on the segment") << Point{12, 10} << a << b << 0.0f;
    QTest::newRow("diagonal segment") << Point{0, 10} << Point{0, 0} << Point{10, 10} << 50.0f;
    QTest::newRow("5.01 beside") << Point{20, 15.01f} << a << b << 5.01f * 5.01f;
}

void ViewGeometryTest::squaredDistanceToSegment()
{
    QFETCH(Point, p);
    QFETCH(Point, a);
    QFETCH(Point, b);
    QFETCH(float, expected);
    QCOMPARE(plyra::squaredDistanceToSegment(p, a, b), expected);
    // A segment of length 0 is at no distance at all: never hit, never nearest.
    QVERIFY(std::isnan(plyra::squaredDistanceToSegment(p, a, a)));
    QVERIFY(!(plyra::squaredDistanceToSegment(a, a, a) <= 25.0f));
}

void ViewGeometryTest::segmentIntersectsRect_data()
{
    QTest::addColumn<Point>("a");
    QTest::addColumn<Point>("b");
    QTest::addColumn<ViewRect>("rect");
    QTest::addColumn<bool>("meets");
    const ViewRect r{10, 10, 20, 10};
    QTest::newRow("start inside") << Point{15, 15} << Point{100, 100} << r << true;
    QTest::newRow("end inside") << Point{100, 100} << Point{29, 19} << r << true;
    QTest::newRow("crossing, both ends outside") << Point{0, 15} << Point{40, 15} << r << true;
    QTest::newRow("crossing a corner") << Point{5, 20} << Point{15, 5} << r << true;
    QTest::newRow("wholly to the right") << Point{31, 0} << Point{40, 40} << r << false;
    QTest::newRow("wholly above") << Point{0, 21} << Point{40, 25} << r << false;
    QTest::newRow("passing beside a corner") << Point{0, 25} << Point{9, 34} << ViewRect{10, 10, 20, 10} << false;
    QTest::newRow("diagonal through the box") << Point{0, 26} << Point{36, 0} << r << true;
    QTest::newRow("cutting past a corner") << Point{25, 30} << Point{40, 15} << r << false;
    // On the right edge the ends are not inside, but the corner test takes the segment.
    QTest::newRow("on the right edge") << Point{30, 12} << Point{30, 18} << r << true;
    QTest::newRow("on the left edge") << Point{10, 12} << Point{10, 18} << r << true;
    QTest::newRow("width 0 crossed") << Point{0, 15} << Point{40, 15} << ViewRect{20, 10, 0, 10} << true;
    QTest::newRow("width 0 beside") << Point{0, 25} << Point{40, 25} << ViewRect{20, 10, 0, 10} << false;
}

void ViewGeometryTest::segmentIntersectsRect()
{
    QFETCH(Point, a);
    QFETCH(Point, b);
    QFETCH(ViewRect, rect);
    QFETCH(bool, meets);
    QCOMPARE(plyra::segmentIntersectsRect(a, b, rect), meets);
    QCOMPARE(plyra::segmentIntersectsRect(b, a, rect), meets);
}

void ViewGeometryTest::unionRect_data()
{
    QTest::addColumn<ViewRect>("first");
    QTest::addColumn<ViewRect>("second");
    QTest::addColumn<ViewRect>("united");
    const ViewRect box{10, 10, 20, 40};
    const ViewRect flat{0, 30, 50, 0};
    QTest::newRow("two boxes") << box << ViewRect{0, 0, 5, 5} << ViewRect{0, 0, 30, 50};
    QTest::newRow("flat then box") << flat << box << box;
    QTest::newRow("box then flat") << box << flat << box;
    QTest::newRow("two flat ones") << flat << ViewRect{5, 0, 0, 9} << ViewRect{};
}

void ViewGeometryTest::unionRect()
{
    QFETCH(ViewRect, first);
    QFETCH(ViewRect, second);
    QFETCH(ViewRect, united);
    QVERIFY(plyra::unionRect(first, second) == united);
}

void ViewGeometryTest::mappingRoundTrip()
{
    const ViewMapping mapping{400, 300};
    // The reciprocal first, then the product, as points are stored.
    const Point unit = mapping.toUnit({100, 75});
    QCOMPARE(unit.x, 100.0f * (1.0f / 400.0f));
    QCOMPARE(unit.y, 75.0f * (1.0f / 300.0f));
    QCOMPARE(mapping.toWidget(Point{100, 75}), QPointF(100, 225));
    QCOMPARE(mapping.fromWidget(QPointF(100, 225)), (Point{100, 75}));
    const QRectF widget = mapping.toWidget(ViewRect{10, 20, 30, 40});
    QCOMPARE(widget, QRectF(10, 240, 30, 40));
    QVERIFY(mapping.fromWidget(widget) == (ViewRect{10, 20, 30, 40}));
    QVERIFY(mapping.contains({0, 0}));
    QVERIFY(!mapping.contains({400, 10}));
    QVERIFY(!mapping.contains({10, 300}));
    // Rectangles around points far away, or not numbers, stay sane.
    QCOMPARE(grownWidgetRect(QRectF(10.2, 20.7, 5, 0), 4.0), QRect(QPoint(6, 16), QPoint(19, 24)));
    QVERIFY(grownWidgetRect(QRectF(std::nan(""), 0, 5, 5), 4.0).isEmpty());
    QVERIFY(grownWidgetRect(QRectF(1e30, 0, 5, 5), 4.0).isEmpty());
    QVERIFY(grownWidgetRect(QRectF(-1e30, -5, 2e30, 10), 4.0).width() > 1000000);
}

void ViewGeometryTest::displaySize_data()
{
    QTest::addColumn<QSize>("current");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("1 wider stays") << QSize(401, 300) << QSize(401, 300);
    QTest::newRow("1 narrower and 1 lower stays") << QSize(399, 299) << QSize(399, 299);
    QTest::newRow("2 wider is resized") << QSize(402, 300) << QSize(400, 300);
    QTest::newRow("2 higher is resized") << QSize(400, 302) << QSize(400, 300);
    QTest::newRow("a photo is resized") << QSize(6000, 4000) << QSize(400, 300);
}

void ViewGeometryTest::displaySize()
{
    QFETCH(QSize, current);
    QFETCH(QSize, shown);
    QCOMPARE(ScaledImageCache::adjustedDisplaySize(current, QSize(400, 300)), shown);
}

void ViewGeometryTest::pyramidHalvesByAveraging()
{
    QImage image(4, 2, QImage::Format_ARGB32_Premultiplied);
    const QRgb pixels[2][4] = {{qRgba(0, 0, 0, 255), qRgba(255, 255, 255, 255), qRgba(10, 20, 30, 40), qRgba(10, 20, 30, 40)},
        {qRgba(1, 2, 3, 255), qRgba(2, 3, 4, 255), qRgba(12, 22, 32, 42), qRgba(13, 23, 33, 43)}};
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x)
            image.setPixel(x, y, pixels[y][x]);
    const QImage half = ImagePyramid::halve(image);
    QCOMPARE(half.size(), QSize(2, 1));
    QCOMPARE(half.pixel(0, 0), qRgba(65, 65, 66, 255)); // (0 + 255 + 1 + 2 + 2) / 4, rounded
    QCOMPARE(QColor::fromRgba(half.pixel(1, 0)).alpha(), 41); // (40 + 40 + 42 + 43 + 2) / 4

    ImagePyramid pyramid(QImage(1000, 600, QImage::Format_RGB32));
    QCOMPARE(pyramid.levelFor(QSize(300, 200)).size(), QSize(500, 300));
    QCOMPARE(pyramid.levelFor(QSize(250, 100)).size(), QSize(250, 150));
    QCOMPARE(pyramid.levelFor(QSize(2000, 100)).size(), QSize(1000, 600));
}

void ViewGeometryTest::hugeViewKeepsOnlyWhatIsVisible()
{
    // A gradient photo shown zoomed to 20000 x 12000: only the visible part is scaled.
    QImage photo(3000, 2000, QImage::Format_RGB32);
    for (int y = 0; y < photo.height(); ++y)
        for (int x = 0; x < photo.width(); ++x)
            photo.setPixel(x, y, qRgb(x * 255 / 2999, y * 255 / 1999, 128));
    ScaledImageCache cache;
    cache.setImage(photo);
    const QSize view(20000, 12000);
    const QRect visible(8000, 5000, 1000, 750);
    QImage target(view.width() / 10, view.height() / 10, QImage::Format_RGB32); // the painter only needs a device
    QPainter painter(&target);
    painter.translate(-visible.left() + 10, -visible.top() + 10);
    cache.draw(painter, QRegion(visible), view, visible, 1.0);
    painter.end();
    const QSize kept = cache.scaledPixelSize();
    QVERIFY(qint64(kept.width()) * kept.height() <= 4 * qint64(visible.width()) * visible.height());
    QVERIFY(cache.scaledRect().contains(visible));

    // A view of a few megapixels, two zoom steps past the visible area, is not scaled
    // whole either: every step of a zoom would rescale all of it.
    QImage small(200, 150, QImage::Format_RGB32);
    QPainter smallPainter(&small);
    const QSize zoomed(2288, 1524);
    const QRect seen(700, 500, 560, 400);
    smallPainter.translate(-seen.topLeft());
    cache.draw(smallPainter, QRegion(seen), zoomed, seen, 1.0);
    QVERIFY(cache.scaledRect().contains(seen));
    QVERIFY(cache.scaledRect().width() < zoomed.width() && cache.scaledRect().height() < zoomed.height());
    // Fitted, the whole image is kept, so scrolling never rescales.
    const QSize fitted(600, 400);
    cache.draw(smallPainter, QRegion(QRect(0, 0, 100, 100)), fitted, QRect(QPoint(0, 0), fitted), 1.0);
    QCOMPARE(cache.scaledRect(), QRect(QPoint(0, 0), fitted));
    // The pixels are the photo's at that place (a smooth gradient, so interpolation
    // changes little).
    for (const QPoint& p : {QPoint(8000, 5000), QPoint(8500, 5600), QPoint(8999, 5749)}) {
        const QColor shown = target.pixelColor(p.x() - visible.left() + 10, p.y() - visible.top() + 10);
        QVERIFY(std::abs(shown.red() - int(p.x() * 3000.0 / 20000 * 255 / 2999)) <= 2);
        QVERIFY(std::abs(shown.green() - int(p.y() * 2000.0 / 12000 * 255 / 1999)) <= 2);
    }
}

void ViewGeometryTest::damageCoversOnlyWhatChanged()
{
    const ViewMapping mapping{400, 300};
    auto line = [&](Point a, Point b) {
        const MorphLine::Ptr l = MorphLine::create();
        for (unsigned track : {0u, 1u}) {
            l->setStartPoint(mapping.toUnit(a), track, nullptr);
            l->setEndPoint(mapping.toUnit(b), track, nullptr);
        }
        return l;
    };
    const MorphLine::Ptr moving = line({10, 10}, {50, 10});
    const MorphLine::Ptr still = line({300, 200}, {350, 250});
    std::vector<MorphLine::Ptr> lines{moving, still};
    LineDamage damage;
    QCOMPARE(damage.update(lines, {}, 0, mapping).boundingRect().contains(QRect(300, 50, 50, 50)), true);
    QVERIFY(damage.update(lines, {}, 0, mapping).isEmpty());

    moving->setEndPoint(mapping.toUnit({60, 30}), 0, nullptr);
    const QRegion region = damage.update(lines, {}, 0, mapping);
    QVERIFY(region.contains(QPoint(50, 290)));  // where the end was
    QVERIFY(region.contains(QPoint(60, 270)));  // where it is
    QVERIFY(!region.intersects(QRect(300, 50, 50, 50)));
    // The other track did not change: nothing to redraw there.
    LineDamage other;
    other.update(lines, {}, 1, mapping);
    moving->setEndPoint(mapping.toUnit({70, 40}), 0, nullptr);
    QVERIFY(other.update(lines, {}, 1, mapping).isEmpty());
    // A selection change redraws the line with its knobs; a removal where it was.
    damage.update(lines, {}, 0, mapping);
    QVERIFY(damage.update(lines, {still}, 0, mapping).contains(QPoint(300, 100)));
    QVERIFY(damage.update({moving}, {}, 0, mapping).contains(QPoint(350, 50)));
}

QTEST_MAIN(ViewGeometryTest)
#include "view_geometry_test.moc"
