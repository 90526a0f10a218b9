// SPDX-License-Identifier: MIT

#pragma once

#include <sstream>
#include <string>

#include "tnjournal.h"

// What `print` writes to a journal.
template <class F>
std::string printed(F print) {
  std::ostringstream text;
  TnJournal journal(text);
  print(journal);
  return text.str();
}
