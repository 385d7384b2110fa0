#include "manpage.h"

#include <algorithm>
#include <cctype>
#include <sstream>

#include "helptext.h"
#include "outcome.h"
#include "version.h"

namespace parlctl {

namespace {

// Text as roff reads it: no line begins with a command, hyphens that are typed stay hyphens.
std::string roff(const std::string& text) {
  std::string safe;
  bool lineBegins = true;
  for (const char letter : text) {
    if (lineBegins && (letter == '.' || letter == '\'')) safe += "\\&";
    if (letter == '\\')
      safe += "\\e";
    else if (letter == '-')
      safe += "\\-";
    else
      safe += letter;
    lineBegins = letter == '\n';
  }
  return safe;
}

std::string upper(std::string text) {
  std::ranges::transform(text, text.begin(),
                         [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

std::string term(const std::string& head, const std::string& text) {
  return ".TP\n.B " + roff(head) + '\n' + roff(text) + '\n';
}

std::string paragraph(const std::string& text) {
  const bool lines = text.find('\n') != std::string::npos;
  return lines ? ".PP\n.nf\n" + roff(text) + "\n.fi\n" : ".PP\n" + roff(text) + '\n';
}

std::string argumentTerms(const Verb& verb) {
  std::string text;
  for (const Argument& argument : verb.arguments)
    text += term(argumentTitle(argument), argumentText(argument));
  return text;
}

std::string exampleLines(const Verb& root, const Verb& verb) {
  if (verb.examples.empty()) return {};
  std::string text = ".PP\n.nf\n";
  for (const std::string& example : verb.examples) text += "    " + roff(root.name + ' ' + example) + '\n';
  return text + ".fi\n";
}

std::string verbSection(const Verb& root, const Verb& verb, const std::string& path) {
  std::string text =
      ".SS " + roff(path + ' ' + synopsis(verb)) + '\n' + roff(verb.text) + ".\n" + argumentTerms(verb);
  for (const std::string& note : verb.notes) text += paragraph(note);
  return text + exampleLines(root, verb);
}

std::string nounSections(const Verb& root, const Verb& noun) {
  std::string text = ".SH COMMANDS\n";
  const std::string path = root.name + ' ' + noun.name;
  if (noun.verbs.empty()) return text + verbSection(root, noun, path);
  for (const Verb& verb : noun.verbs) text += verbSection(root, verb, path + ' ' + verb.name);
  return text;
}

std::string rootSections(const Verb& root) {
  std::string text = ".SH COMMANDS\n";
  for (const Verb& noun : root.verbs)
    text += term(noun.name, noun.text + "; see " + root.name + '-' + noun.name + "(1)");
  text += ".SH OPTIONS\nThey may stand behind a command, too.\n" + argumentTerms(root);
  text += ".SH OUTCOMES\n";
  for (const OutcomeText& outcome : kOutcomes)
    text += term(std::string(outcome.word), std::string(outcome.meaning));
  return text + ".SH EXAMPLES\n" + exampleLines(root, root);
}

std::string statusSection() {
  std::string text = ".SH EXIT STATUS\n";
  for (const StatusText& status : kExitStatuses)
    text += term(std::to_string(status.status), std::string(status.text));
  return text;
}

std::string seeAlso(const Verb& root, const Verb& of) {
  std::string list = &root == &of ? "" : root.name + "(1), ";
  return ".SH SEE ALSO\n" + roff(list + "parlend(8)") + '\n';
}

}  // namespace

std::string manPage(const Verb& root, const Verb& of) {
  const bool isRoot = &root == &of;
  const std::string name = isRoot ? root.name : root.name + '-' + of.name;
  std::string text = ".TH " + upper(roff(name)) + " 1 \"\" \"" + kVersion + "\" \"Sending card\"\n";
  text += ".SH NAME\n" + roff(name) + " \\- " + roff(of.text) + '\n';
  text += ".SH SYNOPSIS\n.B " + roff(isRoot ? root.name : root.name + ' ' + of.name) + '\n' +
          roff(synopsis(of)) + '\n';
  text += isRoot ? rootSections(root) : nounSections(root, of);
  return text + statusSection() + seeAlso(root, of);
}

}  // namespace parlctl
