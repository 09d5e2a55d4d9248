#pragma once

#include <QByteArray>

namespace tarvo {

/// True when a value of the INI text is a serialized object ("@Variant(...)" or "@DateTime(...)", escaped or not).
/// The program never writes one, and reading a crafted one can end the process: the toolkit allocates and recurses as
/// the bytes tell it.
bool holdsSerializedObject(const QByteArray &iniText);

} // namespace tarvo
