// SPDX-License-Identifier: MIT
#include "Layouts.h"

#include <QLayout>
#include <QPointer>
#include <QTest>
#include <QWidget>

class LayoutsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void putsAColumnTopToBottomWithGapsAndMargins();
    void pushesAsideWithAStretch();
    void centresTheItemsOfARow();
    void givesTheRestToTheFillingItem();
    void deletesWhatIsReplacedOnlyOnceItHasReturned();
};

namespace {

QWidget *makeBox(QWidget *parent, QSize size)
{
    auto *box = new QWidget(parent);
    box->setFixedSize(size);
    return box;
}

} // namespace

void LayoutsTest::putsAColumnTopToBottomWithGapsAndMargins()
{
    QWidget page;
    QWidget *const first = makeBox(&page, {20, 10});
    QWidget *const second = makeBox(&page, {20, 10});
    column(&page, {first, gap(7), second}, {3, {5, 6, 5, 6}});
    page.resize(page.sizeHint());
    page.show();

    QCOMPARE(first->pos(), QPoint(5, 6));
    QCOMPARE(second->y(), 6 + 10 + 3 + 7);
    QCOMPARE(page.height(), second->geometry().bottom() + 1 + 6);
}

void LayoutsTest::pushesAsideWithAStretch()
{
    QWidget page;
    QWidget *const left = makeBox(&page, {20, 10});
    QWidget *const right = makeBox(&page, {30, 10});
    row(&page, {left, stretch(), right});
    page.resize(200, 10);
    page.show();

    QCOMPARE(left->x(), 0);
    QCOMPARE(right->x(), 170);
}

void LayoutsTest::centresTheItemsOfARow()
{
    QWidget page;
    QWidget *const low = makeBox(&page, {20, 10});
    QWidget *const high = makeBox(&page, {20, 30});
    QWidget *const top = makeBox(&page, {20, 10});
    row(&page, {low, high, aligned(Qt::AlignTop, top)});
    page.resize(page.sizeHint());
    page.show();

    QCOMPARE(low->y(), 10);
    QCOMPARE(high->y(), 0);
    QCOMPARE(top->y(), 0);
}

void LayoutsTest::givesTheRestToTheFillingItem()
{
    QWidget page;
    auto *const text = new QWidget(&page);
    QWidget *const button = makeBox(&page, {20, 10});
    column(&page, {filling(text), row({stretch(), button})});
    page.resize(100, 100);
    page.show();

    QCOMPARE(text->geometry(), QRect(0, 0, 100, 90));
    QCOMPARE(button->pos(), QPoint(80, 90));
}

void LayoutsTest::deletesWhatIsReplacedOnlyOnceItHasReturned()
{
    QWidget page;
    const QPointer<QWidget> first = new QWidget(&page);
    column(&page, {first.data()});
    page.resize(100, 100);
    page.show();

    auto *const second = new QWidget;
    replace(page.layout(), first, second);

    QVERIFY(first && !first->isVisible());
    QTRY_VERIFY(!first);
    QTRY_COMPARE(second->geometry(), page.rect());
    QVERIFY(second->isVisible());
}

QTEST_MAIN(LayoutsTest)
#include "LayoutsTest.moc"
