# SPDX-License-Identifier: MIT
complete -W '--show-editor --ui-testing --language=zh-Hans --appearance=dark --version --help' quillmark
