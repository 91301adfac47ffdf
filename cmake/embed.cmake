# Turns text files into a .cpp, so that the program carries them and needs no source tree at run time.
#   cmake -DFILES=a.sql;b.txt -DOUTPUT=x.cpp -P embed.cmake
# Each file becomes an array of lines (compilers limit the length of one literal); every byte is written as an escape, so
# that the encoding of the compiler does not matter. What the .cpp defines is declared in demo/embedded_internal.h.

set(text "#include \"demo/embedded_internal.h\"\n\nnamespace demo {\nnamespace {\n")
set(table "")
set(count 0)
foreach(file IN LISTS FILES)
  get_filename_component(name ${file} NAME)
  file(READ ${file} hex HEX)
  string(REGEX REPLACE "(..)" "\\\\x\\1" lines "${hex}")
  string(REPLACE "\\x0d\\x0a" "\\x0a" lines "${lines}")
  string(REPLACE "\\x0a" "\\x0a\",\n    \"" lines "${lines}")
  string(APPEND text "constexpr std::string_view kLines${count}[] = {\n    \"${lines}\"};\n")
  string(APPEND table "    {\"${name}\", kLines${count}},\n")
  math(EXPR count "${count} + 1")
endforeach()
string(APPEND text "}  // namespace\n\nstd::span<const EmbeddedFile> EmbeddedFiles() {\n  static constexpr EmbeddedFile kFiles[] = {\n${table}  };\n  return kFiles;\n}\n\n}  // namespace demo\n")
file(WRITE ${OUTPUT} "${text}")
