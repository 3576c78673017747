// SPDX-License-Identifier: MIT
#include "XSettingsFormat.h"

#include "XSettingsBytes.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

class XSettingsFormatTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsWhatTheProgramFollows_data();
    void readsWhatTheProgramFollows();
    void readsNothingOfNothing();
    void keepsWhatWasWholeBeforeTheBytesEnd();
    void stopsAtAKindThatItDoesNotKnow();
    void passesOverValuesOfAnotherKind();
};

namespace {

XSettingsBytes someSettings(XSettingsBytes::Order order)
{
    return XSettingsBytes(order)
        .color("Xft/Colour")
        .number("Xft/DPI", 98304)
        .text("Net/ThemeName", "Adwaita-dark")
        .number("Gtk/EnableAnimations", 0)
        .text("Net/IconThemeName", "x");
}

} // namespace

void XSettingsFormatTest::readsWhatTheProgramFollows_data()
{
    QTest::addColumn<bool>("isMostSignificantFirst");

    QTest::newRow("least significant first") << false;
    QTest::newRow("most significant first") << true;
}

void XSettingsFormatTest::readsWhatTheProgramFollows()
{
    QFETCH(const bool, isMostSignificantFirst);
    const QByteArray bytes =
        someSettings(isMostSignificantFirst ? XSettingsBytes::Order::mostSignificantFirst
                                            : XSettingsBytes::Order::leastSignificantFirst)
            .bytes();

    const ToolkitSettings settings = XSettingsFormat::reading(bytes);

    QCOMPARE(settings.theme, u"Adwaita-dark"_s);
    QCOMPARE(settings.animates, false);
    QCOMPARE(settings.prefersDark, std::nullopt);
}

void XSettingsFormatTest::readsNothingOfNothing()
{
    QCOMPARE(XSettingsFormat::reading({}), ToolkitSettings{});
    QCOMPARE(XSettingsFormat::reading(XSettingsBytes().bytes()), ToolkitSettings{});
}

void XSettingsFormatTest::keepsWhatWasWholeBeforeTheBytesEnd()
{
    const QByteArray whole = someSettings(XSettingsBytes::Order::leastSignificantFirst).bytes();
    const ToolkitSettings all = XSettingsFormat::reading(whole);
    ToolkitSettings before;

    for (qsizetype length = 0; length <= whole.size(); ++length) {
        // Bytes of their own, so that reading beyond them is seen.
        const QByteArray bytes(whole.constData(), length);
        const ToolkitSettings settings = XSettingsFormat::reading(bytes);
        QVERIFY(settings.theme.isEmpty() || settings.theme == all.theme);
        QVERIFY(!settings.animates || settings.animates == all.animates);
        QCOMPARE(before.completedBy(settings), settings);
        before = settings;
    }
    QCOMPARE(before, all);
}

void XSettingsFormatTest::stopsAtAKindThatItDoesNotKnow()
{
    const QByteArray bytes = XSettingsBytes()
                                 .number("Gtk/EnableAnimations", 0)
                                 .unknown("Net/Future")
                                 .text("Net/ThemeName", "Adwaita-dark")
                                 .bytes();

    const ToolkitSettings settings = XSettingsFormat::reading(bytes);

    QCOMPARE(settings.animates, false);
    QVERIFY(settings.theme.isEmpty());
}

void XSettingsFormatTest::passesOverValuesOfAnotherKind()
{
    const QByteArray bytes =
        XSettingsBytes().number("Net/ThemeName", 1).text("Gtk/EnableAnimations", "0").bytes();

    QCOMPARE(XSettingsFormat::reading(bytes), ToolkitSettings{});
}

QTEST_APPLESS_MAIN(XSettingsFormatTest)
#include "XSettingsFormatTest.moc"
