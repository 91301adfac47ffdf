// The three descriptors that a program is handed by whoever starts it.
#pragma once

namespace base {

// To be called first of all in every main. A standard stream that the caller closed leaves its number to the
// next file that is opened, and what is printed then goes into that file. Those that are closed are opened
// here on nothing, the wrong way round: reading from the input and writing to the outputs go on failing, so
// that an output that nobody gets is never taken for a good one. Throws base::Error when that cannot be done:
// then nothing may be opened.
void OpenStandardStreams();

}  // namespace base
