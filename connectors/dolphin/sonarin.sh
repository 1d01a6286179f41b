# SPDX-License-Identifier: MIT
# Read at the start of a Plasma session. Dolphin finds the plug-in that tells Sonarin its selection by this.
export QT_PLUGIN_PATH='@SONARIN_PLUGINS@'"${QT_PLUGIN_PATH:+:$QT_PLUGIN_PATH}"
