// SPDX-License-Identifier: MIT
#include "SystemAppearance.h"

SystemAppearance::SystemAppearance(QObject *parent)
    : QObject(parent)
{
}

void SystemAppearance::setValues(const Values &values)
{
    if (values == m_values)
        return;
    m_values = values;
    Q_EMIT changed();
}
