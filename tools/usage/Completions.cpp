#include "tools/usage/Completions.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/files/FileTypes.h"

namespace velan::tool {
namespace {

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text.append(text.empty() ? "" : " ").append(word);
  return text;
}

// In single quotes.
std::string quoted(std::string_view text) {
  std::string result = "'";
  for (const char c : text) result.append(c == '\'' ? "'\\''" : std::string_view(&c, 1));
  return result + "'";
}

// The words that the value of an option can be; empty when it is a file or anything.
std::string valuesOf(const OptionEntry& option) {
  if (option.type != "TYPE") return joined(choicesOf(option));
  std::string names;
  for (const FileType& each : fileTypes()) names.append(names.empty() ? "" : " ").append(each.name);
  return names;
}

bool isFile(const OptionEntry& option) { return option.type == "FILE" || option.type == "PATH"; }

std::vector<std::string> dashedNames(const OptionEntry& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.shortNames) names.push_back(fmt::format("-{}", name));
  for (const std::string& name : option.longNames) names.push_back(fmt::format("--{}", name));
  return names;
}

std::string wordsOf(const CommandEntry& command) {
  std::vector<std::string> words;
  for (const SubcommandEntry& each : command.subcommands) words.push_back(each.name);
  for (const OptionEntry& each : command.options) {
    for (const std::string& name : dashedNames(each)) words.push_back(name);
  }
  return joined(words);
}

// A branch for the options of a command whose values are known.
std::string bashValues(const CommandEntry& command) {
  std::string branches;
  for (const OptionEntry& each : command.options) {
    if (each.type.empty()) continue;
    const std::string values = valuesOf(each);
    for (const std::string& name : dashedNames(each)) {
      branches += fmt::format("    {}) values={} ;;\n", quoted(command.name + ' ' + name),
                              quoted(!values.empty() ? values
                                     : isFile(each)  ? "<file>"
                                                     : "<any>"));
    }
  }
  return branches;
}

std::string bashScript(const std::vector<CommandEntry>& commands) {
  std::string names;
  std::string words;
  std::string values;
  for (const CommandEntry& each : commands) {
    if (&each != &commands.front()) names.append(names.empty() ? "" : "|").append(quoted(each.name));
    words += fmt::format("    {}) words={} ;;\n", quoted(each.name), quoted(wordsOf(each)));
    values += bashValues(each);
  }
  return fmt::format(R"~(_velan() {{
  local current=${{COMP_WORDS[COMP_CWORD]}} command=velan words= values= i
  for ((i = 1; i < COMP_CWORD; ++i)); do
    case "$command ${{COMP_WORDS[i]}}" in
    {}) command+=" ${{COMP_WORDS[i]}}" ;;
    esac
  done
  case "$command ${{COMP_WORDS[COMP_CWORD - 1]}}" in
{}  esac
  if [[ -n $values && $values != '<'* ]]; then
    COMPREPLY=($(compgen -W "$values" -- "$current"))
    return
  fi
  case $command in
{}  esac
  if [[ -z $values && ( $current == -* || $command == velan || $command == 'velan blocks' ) ]]; then
    COMPREPLY=($(compgen -W "$words" -- "$current"))
  elif [[ $values != '<any>' ]]; then
    COMPREPLY=($(compgen -W "$([[ $values ]] || printf '%s\n' $words | grep -v '^-')" -- "$current") $(compgen -f -- "$current"))
  fi
}}
complete -o filenames -F _velan velan
)~",
                     names, values, words);
}

// "--name[description]:type:action", as zsh wants it.
std::string zshOption(const OptionEntry& option) {
  std::string specifications;
  std::string description;
  for (const char c : option.description)
    description += c == '[' || c == ']' || c == ':' ? std::string("\\") + c : std::string(1, c);
  const std::string values = valuesOf(option);
  const std::string action = !values.empty() ? fmt::format("({})", values) : isFile(option) ? "_files" : "";
  for (const std::string& name : dashedNames(option)) {
    const std::string value =
        option.type.empty() ? "" : fmt::format(":{}:{}", values.empty() ? option.type : "value", action);
    specifications += ' ' + quoted(fmt::format("*{}[{}]{}", name, description, value));
  }
  return specifications;
}

std::string zshBranch(const CommandEntry& command) {
  std::string branch = fmt::format("    {})\n", quoted(command.name));
  if (!command.subcommands.empty()) {
    branch += "      local -a commands=(";
    for (const SubcommandEntry& each : command.subcommands) branch += ' ' + quoted(each.name + ':' + each.description);
    branch += ")\n      _describe command commands\n";
  }
  branch += "      _arguments -s -S";
  for (const OptionEntry& each : command.options) branch += zshOption(each);
  return branch + (command.subcommands.empty() ? " '*:file:_files'" : "") + "\n      ;;\n";
}

std::string zshScript(const std::vector<CommandEntry>& commands) {
  std::string names;
  std::string branches;
  for (const CommandEntry& each : commands) {
    if (&each != &commands.front()) names.append(names.empty() ? "" : "|").append(quoted(each.name));
    branches += zshBranch(each);
  }
  return fmt::format(R"~(#compdef velan
_velan() {{
  local command=velan
  local -i i
  for ((i = 2; i < CURRENT; ++i)); do
    case "$command ${{words[i]}}" in
    {}) command+=" ${{words[i]}}" ;;
    esac
  done
  local -i depth=${{(w)#command}}
  words=(velan "${{(@)words[depth + 1,-1]}}")
  ((CURRENT -= depth - 1))
  case $command in
{}  esac
}}
_velan "$@"
)~",
                     names, branches);
}

// Whether just the command has been typed, but none of those below it.
std::string fishCondition(const CommandEntry& command) {
  const std::string rest = command.name.substr(command.name.find(' ') + 1);
  if (rest == command.name) return "__fish_use_subcommand";
  std::string condition;
  for (size_t start = 0; start < rest.size();) {
    const size_t end = std::min(rest.find(' ', start), rest.size());
    condition += fmt::format("{}__fish_seen_subcommand_from {}", condition.empty() ? "" : "; and ",
                             rest.substr(start, end - start));
    start = end + 1;
  }
  std::vector<std::string> below;
  for (const SubcommandEntry& each : command.subcommands) below.push_back(each.name);
  if (!below.empty()) condition += fmt::format("; and not __fish_seen_subcommand_from {}", joined(below));
  return condition;
}

std::string fishScript(const std::vector<CommandEntry>& commands) {
  std::string script = "complete -c velan -n __fish_use_subcommand -f\n";
  for (const CommandEntry& command : commands) {
    const std::string condition = fishCondition(command);
    const std::string start = fmt::format("complete -c velan -n {}", quoted(condition));
    for (const SubcommandEntry& each : command.subcommands) {
      script += fmt::format("{} -f -a {} -d {}\n", start, each.name, quoted(each.description));
    }
    for (const OptionEntry& each : command.options) {
      script += start;
      for (const std::string& name : each.shortNames) script += " -s " + name;
      for (const std::string& name : each.longNames) script += " -l " + name;
      const std::string values = valuesOf(each);
      if (!values.empty()) script += " -x -a " + quoted(values);
      if (values.empty() && !each.type.empty()) script += isFile(each) ? " -r" : " -x";
      script += " -d " + quoted(each.description) + '\n';
    }
  }
  return script;
}

}  // namespace

std::string completionScript(Shell shell, const std::vector<CommandEntry>& commands) {
  if (shell == Shell::Bash) return bashScript(commands);
  return shell == Shell::Zsh ? zshScript(commands) : fishScript(commands);
}

}  // namespace velan::tool
