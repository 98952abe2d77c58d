// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

// The user's folders as the XDG base-directory rules name them.
namespace XdgBaseDirectories {

// The user's home: $HOME when it is an absolute path, else the home of the account. Empty when neither
// names a folder other than the root, where nothing of the user belongs.
QString home();

// $XDG_CONFIG_HOME when it is an absolute path (a relative one is ignored, as the rules say), else
// <home>/.config. Empty when there is no home either.
QString configHome();

}  // namespace XdgBaseDirectories
