# SPDX-License-Identifier: MIT
complete -W '--show-editor --show-notes --autostart --ui-testing --language=zh-Hans --appearance=dark --version --help' quillmark
