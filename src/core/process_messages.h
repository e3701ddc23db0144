#pragma once

// The process messages that go between the game's process and a page's process: names, and what stands at which place
// of the argument list. Both programs are built from this.
namespace ZEMO::Core {

/// To the page: run a script in the main frame. From the page: its result.
inline constexpr char kEvaluateJavascript[] = "evaluateJavascript";
/// Argument places of kEvaluateJavascript, all strings. The script travels to the page only, both results back only.
enum EvaluateArgument : int { kEvaluateId = 0, kEvaluateScript = 1, kEvaluateResult = 2, kEvaluateError = 3 };

/// From the page: its script has used a bound object.
inline constexpr char kBindObjectAsync[] = "BindObjectAsync";
enum BindObjectArgument : int { kBindObjectName = 0 };

/// From the page: a password field has got (true) or lost (false) the focus.
inline constexpr char kImePasswordFieldFocus[] = "imePasswordFieldFocus";
enum ImePasswordFieldFocusArgument : int { kPasswordFieldFocused = 0 };

}  // namespace ZEMO::Core
