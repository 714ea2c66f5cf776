#pragma once

/// The language of texts for people, and of the numbers and dates in them. Texts are in the
/// resources, as ":/translations/NAME_LANGUAGE.qm"; the program's own as "orka".
namespace Language {

/// The first that the environment asks for (LC_ALL, LC_MESSAGES, LANG and LANGUAGE, as gettext
/// takes them) and that there is. English where there is none. The application has to be there.
void choose();

/// The texts of a worker that has been loaded since, from its own resources.
void addWorkersTexts();

/// English from now on, the system's messages, too: for what programs read.
void becomeEnglish();

} // namespace Language
