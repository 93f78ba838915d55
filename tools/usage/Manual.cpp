#include "tools/usage/Manual.h"

#include <fmt/format.h>

namespace velan::tool {
namespace {

// As it stands: no character has a meaning, no line begins with one.
std::string plain(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if ((c == '.' || c == '\'') && (escaped.empty() || escaped.back() == '\n')) escaped += "\\&";
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string paragraph(const std::string& term, const std::string& text) {
  return fmt::format(".TP\n\\fB{}\\fR\n{}\n", plain(term), plain(text));
}

std::string verbatim(const std::string& text) {
  return text.empty() ? text : fmt::format(".nf\n{}\n.fi\n", plain(text));
}

std::string optionsOf(const CommandEntry& command) {
  std::string page;
  for (const OptionEntry& each : command.arguments) page += paragraph(each.type, each.description);
  for (const OptionEntry& each : command.options) {
    page += paragraph(each.type.empty() ? each.names() : each.names() + ' ' + each.type, each.description);
  }
  return page;
}

std::string sectionOf(const CommandEntry& command) {
  std::string page = fmt::format(".SS \"{}\"\n{}.\n.PP\n\\fB{}\\fR\n", plain(command.name), plain(command.description),
                                 plain(command.synopsis()));
  page += optionsOf(command);
  if (!command.details.empty())
    page += ".PP\n" + plain(command.details) + (command.details.ends_with('\n') ? "" : "\n");
  if (!command.examples.empty()) page += ".PP\n" + verbatim(command.examples);
  return page;
}

}  // namespace

std::string manualPage(const std::vector<CommandEntry>& commands) {
  const CommandEntry& tool = commands.front();
  std::string page = fmt::format(".TH VELAN 1 \"\" \"velan {}\" \"User Commands\"\n.SH NAME\nvelan \\- {}\n",
                                 VELAN_VERSION, plain(tool.description));
  page +=
      fmt::format(".SH SYNOPSIS\n\\fB{}\\fR\n.SH OPTIONS\n{}.SH COMMANDS\n", plain(tool.synopsis()), optionsOf(tool));
  for (size_t i = 1; i < commands.size(); ++i) page += sectionOf(commands[i]);
  page += fmt::format(".SH EXIT STATUS\n{}.SH EXAMPLES\n{}", plain(tool.details), verbatim(tool.examples));
  return page;
}

}  // namespace velan::tool
