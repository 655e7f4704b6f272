#pragma once
// The text forms of the port's reads and writes. Apart from the port itself because they use
// Qt's QString, which the Windows port file must not see.

#include <QString>

#include "serial/AwComm.h"

namespace orbline {

// One character per byte received (see PortText), nothing stripped.
QString ReadText1(AwComm& comm);
QString ReadText2(AwComm& comm, std::int32_t count);
// Each UTF-16 unit gives its low byte, with no code page: text above U+00FF loses its upper
// byte, so only ASCII survives this path unchanged.
bool WriteText(AwComm& comm, const QString& text);

}  // namespace orbline
