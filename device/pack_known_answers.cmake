# Writes OUTPUT, a source that holds the text files INPUTS: cmake -DOUTPUT=... -DINPUTS=... -P this
string(APPEND source
  "#include \"device/known_answers.h\"\n\n"
  "const std::vector<zavri::KnownAnswerFile>& zavri::known_answer_files() {\n"
  "  static const std::vector<KnownAnswerFile> files = {\n")
foreach(input ${INPUTS})
  get_filename_component(name ${input} NAME_WE)
  file(READ ${input} text)
  string(APPEND source "      {\"${name}\", R\"(${text})\"},\n")
endforeach()
string(APPEND source "  };\n  return files;\n}\n")
file(WRITE ${OUTPUT} "${source}")
