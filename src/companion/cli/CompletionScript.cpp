#include "companion/cli/Completion.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

/// The words with a text between them, in lines of some 100 letters; `fold` ends a line and begins
/// the next one.
std::string joined(const std::vector<std::string>& words, std::string_view between,
                   std::string_view fold) {
    constexpr std::size_t width = 90;
    std::string result;
    std::size_t column = 0;
    for (const std::string& word : words) {
        if (column > 0) {
            result += column + word.size() > width ? fold : between;
            column = column + word.size() > width ? 0 : column;
        }
        result += word;
        column += word.size() + between.size();
    }
    return result;
}

/// A text within single quotes: no shell looks for anything in it.
std::string quoted(std::string_view text) {
    std::string result = "'";
    for (const char c : text) {
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return result + "'";
}

std::vector<std::string> namesOf(const OptionRow& row) {
    std::vector<std::string> names;
    if (!row.shortName.empty()) {
        names.emplace_back(row.shortName);
    }
    names.emplace_back(row.name);
    return names;
}

/// The options that the help of a command names, or that of the program.
std::vector<const OptionRow*> optionsOf(Command command) {
    std::vector<const OptionRow*> options;
    for (const OptionRow& row : optionRows()) {
        if ((row.commands & only(command)) != 0) {
            options.push_back(&row);
        }
    }
    return options;
}

std::vector<std::string> commandNames() {
    std::vector<std::string> names;
    for (const CommandRow& row : commandRows()) {
        names.emplace_back(row.name);
    }
    return names;
}

// ---- bash

/// Places of the command line, as patterns of "command:option", and what can stand there.
using Place = std::pair<std::vector<std::string>, Offered>;

void addPlace(std::vector<Place>& places, std::string pattern, Offered offered) {
    const auto same = std::find_if(places.begin(), places.end(), [&offered](const Place& place) {
        return place.second == offered;
    });
    if (same != places.end()) {
        same->first.push_back(std::move(pattern));
    } else {
        places.emplace_back(std::vector<std::string>{std::move(pattern)}, std::move(offered));
    }
}

void addPlacesOf(std::vector<Place>& places, const OptionRow& row) {
    std::vector<Place> own;
    for (const CommandRow& command : commandRows()) {
        if ((row.commands & only(command.command)) != 0) {
            addPlace(own, std::string(command.name) + ":", offeredValues(row, command));
        }
    }
    for (auto& [commands, offered] : own) {
        for (const std::string& name : namesOf(row)) {
            if (own.size() == 1) {
                addPlace(places, "*:" + name, offered);
                continue;
            }
            for (const std::string& command : commands) {
                addPlace(places, command + name, offered);
            }
        }
    }
}

std::string bashOffer(const Offered& offered) {
    const std::string words = quoted(joined(offered.words, " ", "\n            "));
    switch (offered.kind) {
    case Offer::words:
        return "_zolexctl_words " + words;
    case Offer::list:
        return "_zolexctl_list " + words;
    case Offer::files:
        return "_zolexctl_files";
    case Offer::folders:
        return "_zolexctl_folders";
    case Offer::paths:
        return "_zolexctl_paths " + words;
    case Offer::nothing:
        break;
    }
    return ":";
}

std::string bashValues() {
    std::vector<Place> places;
    for (const OptionRow& row : optionRows()) {
        if (!row.value.empty()) {
            addPlacesOf(places, row);
        }
    }
    std::string text = "    case $command:$option in\n";
    for (const auto& [patterns, offered] : places) {
        text += "    " + joined(patterns, " | ", " | \\\n        ") + ")\n        " +
                bashOffer(offered) + " ;;\n";
    }
    return text + "    *:=) _zolexctl_files ;;\n    esac\n";
}

std::string bashOptionsOf(Command command) {
    std::vector<std::string> names;
    for (const OptionRow* const row : optionsOf(command)) {
        for (std::string& name : namesOf(*row)) {
            names.push_back(std::move(name));
        }
    }
    return quoted(joined(names, " ", "\n            "));
}

std::string bashCommands() {
    std::string text =
        "    case $command in\n    '') options=" + bashOptionsOf(Command::none) + " ;;\n";
    for (const CommandRow& row : commandRows()) {
        text +=
            "    " + std::string(row.name) + ") options=" + bashOptionsOf(row.command) + " ;;\n";
    }
    return text + "    *)\n        _zolexctl_files\n        return\n        ;;\n    esac\n";
}

std::string bashWords() {
    std::vector<Place> places;
    for (const CommandRow& row : commandRows()) {
        addPlace(places, std::string(row.name), offeredWords(row));
    }
    std::string text = "    case $command in\n"
                       "    '') _zolexctl_words \"$commands\" ;;\n";
    for (const auto& [patterns, offered] : places) {
        text +=
            "    " + joined(patterns, " | ", " | \\\n        ") + ")\n        " +
            (offered.kind == Offer::nothing ? "_zolexctl_words \"$options\"" : bashOffer(offered)) +
            " ;;\n";
    }
    return text + "    esac\n";
}

std::string bashValued() {
    std::vector<std::string> names;
    for (const OptionRow& row : optionRows()) {
        for (std::string& name : namesOf(row)) {
            if (!row.value.empty()) {
                names.push_back(std::move(name));
            }
        }
    }
    return joined(names, " | ", " | \\\n            ");
}

constexpr std::string_view bashHead =
    R"(# What bash offers behind zolexctl. Made of the program's own table of options.

# shellcheck disable=SC2207 # no word holds a blank

_zolexctl_words() {
    COMPREPLY=($(compgen -W "$1" -- "$current"))
}

# Some of the words, with commas.
_zolexctl_list() {
    local before=''
    [[ $current != *,* ]] || before=${current%,*},
    COMPREPLY=($(compgen -P "$before" -W "$1" -- "${current##*,}"))
    compopt -o nospace
}

# Names with blanks and quotes are better known to bash itself.
_zolexctl_files() {
    compopt -o default
}

_zolexctl_folders() {
    compopt -o dirnames
}

# One of the words, "=" and a file.
_zolexctl_paths() {
    COMPREPLY=($(compgen -S = -W "$1" -- "$current"))
    compopt -o nospace
}

)";

constexpr std::string_view bashLoop = R"(    local command='' option='' behind='' options='' word i
    local current=${COMP_WORDS[COMP_CWORD]}
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if [[ $word == '=' ]]; then # bash parts words there
            option=${option:-=}
            continue
        elif [[ -n $option ]]; then
            option=''
            continue
        fi
        case $word in
        --)
            # What stands behind it is a command line of its own.
            [[ -n $behind ]] || behind=$command command=''
            ;;
)";

constexpr std::string_view bashBehindLoop = R"(        -*) ;;
        *) command=${command:-$word} ;;
        esac
    done
    if [[ $current == '=' ]]; then
        current=''
        option=${option:-=}
    fi
    case $behind:$command in
    guard:) _zolexctl_words zolex ;;
    replay:) commands+=' zolex' ;;&
    :* | replay:*) _zolexctl_line ;;
    *) _zolexctl_files ;;
    esac
}

)";

std::string bashScript() {
    std::string text(bashHead);
    text += "# The words and options of one command line.\n_zolexctl_line() {\n"
            "    if [[ -n $option ]]; then\n        _zolexctl_value\n        return\n    fi\n" +
            bashCommands() +
            "    if [[ $current == -* ]]; then\n        _zolexctl_words \"$options\"\n"
            "        return\n    fi\n" +
            bashWords() + "}\n\n# What stands behind an option.\n_zolexctl_value() {\n" +
            bashValues() + "}\n\n_zolexctl() {\n    local commands=" +
            quoted(joined(commandNames(), " ", "\n        ")) + "\n";
    text.append(bashLoop).append("        " + bashValued() + ") option=$word ;;\n");
    return text.append(bashBehindLoop) + "complete -F _zolexctl zolexctl\n";
}

// ---- zsh

/// A text of an option's specification, within its brackets.
std::string inBrackets(std::string_view text) {
    std::string result = "[";
    for (const char c : text) {
        if (c == '[' || c == ']' || c == '\\') {
            result += '\\';
        }
        result += c;
    }
    return result + "]";
}

std::string zshAction(const Offered& offered) {
    const std::string words = joined(offered.words, " ", " ");
    switch (offered.kind) {
    case Offer::words:
        return "(" + words + ")";
    case Offer::list:
        return "_values -s , ID " + words;
    case Offer::files:
        return "_files";
    case Offer::folders:
        return "_path_files -/";
    case Offer::paths:
        return "_zolexctl_paths " + words;
    case Offer::nothing:
        break;
    }
    return " ";
}

/// One word of _arguments: "'--width=[columns of the text]:N: '".
std::string zshOption(const OptionRow& row, const Offered& offered) {
    std::string rest = inBrackets(row.text);
    if (!row.value.empty()) {
        rest.append(":").append(row.value).append(":").append(zshAction(offered));
    }
    const std::string name = std::string(row.name) + (row.value.empty() ? "" : "=");
    if (row.shortName.empty()) {
        return quoted((row.repeats ? "*" : "") + name + rest);
    }
    const std::string both = std::string(row.shortName) + " " + std::string(row.name);
    return quoted("(" + both + ")") + "{" + std::string(row.shortName) +
           (row.value.empty() ? "" : "+") + "," + name + "}" + quoted(rest);
}

std::vector<std::string> zshOptions(const CommandRow& command) {
    std::vector<std::string> options;
    for (const OptionRow* const row : optionsOf(command.command)) {
        options.push_back(zshOption(*row, offeredValues(*row, command)));
    }
    return options;
}

/// A line for each argument of _arguments.
std::string zshArguments(std::string text, const std::vector<std::string>& arguments,
                         const std::string& indent) {
    for (const std::string& argument : arguments) {
        text.append(" \\\n").append(indent).append(argument);
    }
    return text;
}

std::string zshCommandList() {
    std::string text = "    local -a commands=(\n";
    for (const CommandRow& row : commandRows()) {
        text += "        " + quoted(std::string(row.name) + ":" + std::string(row.summary)) + "\n";
    }
    return text + "    )\n";
}

std::string zshCommand(const CommandRow& row) {
    std::vector<std::string> arguments = zshOptions(row);
    const Offered words = offeredWords(row);
    if (words.kind != Offer::nothing) {
        const bool isFile = words.kind == Offer::files;
        arguments.push_back(quoted((isFile ? "*:FILE:" : "*:CODE:") + zshAction(words)));
    }
    return zshArguments("    " + std::string(row.name) + ")\n        _arguments", arguments,
                        "            ") +
           "\n        ;;\n";
}

constexpr std::string_view zshHead = R"(#compdef zolexctl
# What zsh offers behind zolexctl. Made of the program's own table of options.

# One of the words, "=" and a file.
_zolexctl_paths() {
    if compset -P '*='; then
        _files
    else
        compadd -S = -- "$@"
    fi
}

# What stands behind "--", the word of this number.
_zolexctl_behind() {
    local mark=$1
    case $2 in
    replay)
        words=(zolexctl "${(@)words[mark + 1,-1]}")
        (( CURRENT -= mark - 1 ))
        _zolexctl zolex
        ;;
    guard)
        if (( CURRENT == mark + 1 )); then
            compadd zolex
        else
            _files
        fi
        ;;
    *) _files ;;
    esac
}

)";

constexpr std::string_view zshBehindOptions = R"( && return
    if [[ $state == command ]]; then
        _describe -t commands command commands
        (( ! $# )) || compadd "$@"
        return
    fi
    local mark=${words[(ie)--]}
    if (( mark < CURRENT )); then
        _zolexctl_behind $mark $words[1]
        return
    fi
    curcontext="${curcontext%:*}-$words[1]:"
    case $words[1] in
)";

std::string zshScript() {
    std::string text(zshHead);
    text += "# The arguments are words that can stand in the place of a command.\n_zolexctl() {\n"
            "    local curcontext=$curcontext state line\n    typeset -A opt_args\n" +
            zshCommandList();
    const CommandRow program{Command::none, "zolexctl", "", "", "", "", ""};
    std::vector<std::string> arguments = zshOptions(program);
    arguments.insert(arguments.end(), {"'1: :->command'", "'*:: :->words'"});
    text.append(zshArguments("    _arguments -C", arguments, "        ")).append(zshBehindOptions);
    for (const CommandRow& row : commandRows()) {
        text += zshCommand(row);
    }
    return text + "    *) _files ;;\n    esac\n}\n\n_zolexctl \"$@\"\n";
}

} // namespace

std::string completionScript(Shell shell) {
    return shell == Shell::bash ? bashScript() : zshScript();
}

} // namespace zolex::companion
