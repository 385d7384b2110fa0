# parlend(8) of what parlend --help says: cmake -DHELP=FILE -DPAGE=FILE -DVERSION=N -P ParlendPage.cmake
file(READ ${HELP} text)
string(REGEX REPLACE "\\\\" "\\\\e" text "${text}")
string(REPLACE "-" "\\-" text "${text}")
string(REGEX REPLACE "\n([.'])" "\n\\\\&\\1" text "${text}")
file(WRITE ${PAGE} ".TH PARLEND 8 \"\" \"parlend ${VERSION}\" \"Sending card\"
.SH NAME
parlend \\- the sending\\-card daemon
.SH DESCRIPTION
.nf
${text}.fi
.SH SEE ALSO
parlctl(1)
")
