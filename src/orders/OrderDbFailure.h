#pragma once
// The end of the process when the order database cannot be opened or closed.

#include <QString>

namespace orbline {

inline constexpr auto kOrderDbOpenFailed = u"データベースの取得に失敗しました";
inline constexpr auto kOrderDbCloseFailed = u"データベースのＣＬＯＳＥに失敗しました";

// With the console shown: the critical message box. Otherwise nobody could click it: the text
// goes to the main log and to standard error. The cause (the driver's own words) goes
// to the diagnostic log either way. Then the process ends at once with status 1.
[[noreturn]] void EndOnOrderDbFailure(const QString& text, const QString& cause);

// The console's critical message box (title "KV_Orbline"), waiting for the click. False when
// there is no console to show it.
bool ShowOrderDbMessageBox(const QString& text);

}  // namespace orbline
