#include "platform/system/SystemInformation.h"

#include <QSysInfo>

namespace fw {
QString OSVersionString()
{
    return QSysInfo::prettyProductName();
}
} // namespace fw
