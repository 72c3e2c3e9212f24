# SPDX-License-Identifier: BSD-3-Clause
# A login shell completes what is typed for lumctl. bash-completion would read the file too, and
# many others.
completion=/usr/share/bash-completion/completions/lumctl
if [ -n "$BASH_VERSION" ] && [ -e "$completion" ]; then
    . "$completion"
fi
unset completion
