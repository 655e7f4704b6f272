#pragma once
// The instrument table: each code and its dialogue.

#include <QString>

namespace orbline {

using Dialogue = void (*)();

// The dialogue of a code of the table, or nullptr. A code whose dialogue is not built yet has
// none and ends the session as an unknown code does.
Dialogue DialogueOf(const QString& instrumentCode);

}  // namespace orbline
