#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "app/file_system.h"
#include "core/styled_text.h"

namespace talvex::app {

// Rich Text Format for the log: what Talvex's styled text holds (foreground colours, centred
// paragraphs, tabs, line breaks, any Unicode character) written so that word processors open
// it, and read back into the same styled text.
//
// A run's own alignment is kept in the private control word \tvxalign (0 natural, 1 centred),
// which other readers skip as RTF asks of unknown words; they see the paragraph alignment of
// the paragraph's first run instead, as the window shows it. Plain runs use the automatic
// colour (\cf0).
[[nodiscard]] std::string rtfFromStyledText(const core::StyledText& text);

// Reads RTF, from Talvex or from a word processor: text, \par and \line as line feeds, \tab,
// \cf colours, \qc (and \tvxalign) alignment, \u and \'hh characters (Windows-1252), the usual
// named punctuation; font tables, style sheets, pictures and other destinations are skipped.
// Nothing when the text is no RTF document or its groups do not close.
[[nodiscard]] std::optional<core::StyledText> styledTextFromRtf(std::string_view rtf);

// The name of the rich text inside a rich-text-with-attachments package (a folder).
inline constexpr const char* kRtfdTextName = "TXT.rtf";

// Writes the text as a package: the folder (made when missing) holding "TXT.rtf", written
// atomically, so a reader finds either the old text or the new one, whole.
[[nodiscard]] bool writeRtfd(FileSystem& files, const std::string& packagePath,
                             const core::StyledText& text);
// Nothing when the package or its text is missing or no RTF.
[[nodiscard]] std::optional<core::StyledText> readRtfd(const FileSystem& files,
                                                       const std::string& packagePath);

}  // namespace talvex::app
