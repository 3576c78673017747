<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: MIT -->
<!DOCTYPE TS>
<TS version="2.1" sourcelanguage="en" language="zh_CN">
<context>
    <name>Localizable</name>
    <!-- The preferences menu -->
    <message>
        <source>Preferences</source>
        <translation>偏好设置</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>语言</translation>
    </message>
    <message>
        <source>Appearance</source>
        <translation>外观</translation>
    </message>
    <message>
        <source>Follow system</source>
        <translation>跟随系统</translation>
    </message>
    <message>
        <source>English</source>
        <translation>English</translation>
    </message>
    <message>
        <source>简体中文</source>
        <translation>简体中文</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>浅色</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>深色</translation>
    </message>
    <message>
        <source>Show Markdown files</source>
        <translation>显示 Markdown 文件</translation>
    </message>
    <!-- The launcher -->
    <message>
        <source>New note</source>
        <translation>新建笔记</translation>
    </message>
    <message>
        <source>Quit Quillmark</source>
        <translation>退出 Quillmark</translation>
    </message>
    <message>
        <source>Quillmark · Quick capture</source>
        <translation>Quillmark · 快速记录</translation>
    </message>
    <message>
        <source>Click to capture · Drag to move · Right-click to quit</source>
        <translation>单击记录 · 拖动可移动 · 右键退出</translation>
    </message>
    <!-- The workspace -->
    <message>
        <source>Capture</source>
        <translation>记录</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>笔记</translation>
    </message>
    <message>
        <source>Close · Esc</source>
        <translation>关闭 · Esc</translation>
    </message>
    <message>
        <source>Reload</source>
        <translation>重新加载</translation>
    </message>
    <message>
        <source>Show file</source>
        <translation>显示文件</translation>
    </message>
    <message>
        <source>To quit all the same, press Ctrl+Q.</source>
        <translation>仍要退出，请按 Ctrl+Q。</translation>
    </message>
    <message>
        <source>Retry</source>
        <translation>重试</translation>
    </message>
    <message>
        <source>Markdown · local</source>
        <translation>Markdown · 本地</translation>
    </message>
    <message>
        <source>1 note</source>
        <translation>1 条笔记</translation>
    </message>
    <message>
        <source>%d notes</source>
        <translation>%d 条笔记</translation>
    </message>
    <message>
        <source>Capture now. Think later.</source>
        <translation>先记下，再细想。</translation>
    </message>
    <!-- The capture screen -->
    <message>
        <source>· NOW</source>
        <translation>· 此刻</translation>
    </message>
    <message>
        <source>What’s on your mind?</source>
        <translation>在想什么？</translation>
    </message>
    <message>
        <source>Catch the idea. Keep your flow.</source>
        <translation>抓住灵感，思路不断线。</translation>
    </message>
    <message>
        <source>A sentence. A thought.
Get it down before it goes.</source>
        <translation>一句话，一个念头。
趁它还没溜走，先记下来。</translation>
    </message>
    <message>
        <source>1 character</source>
        <translation>1 个字符</translation>
    </message>
    <message>
        <source>%d characters</source>
        <translation>%d 个字符</translation>
    </message>
    <message>
        <source>⌘ ↵ Save &amp; close</source>
        <translation>Ctrl ↵ 保存并关闭</translation>
    </message>
    <message>
        <source>Save this thought</source>
        <translation>保存这个想法</translation>
    </message>
    <!-- The library -->
    <message>
        <source>Thoughts, kept.</source>
        <translation>想法，都在这里。</translation>
    </message>
    <message>
        <source>Find a thought…</source>
        <translation>搜索想法…</translation>
    </message>
    <message>
        <source>Clear search</source>
        <translation>清除搜索</translation>
    </message>
    <message>
        <source>No matching thoughts yet.</source>
        <translation>没有找到匹配的想法。</translation>
    </message>
    <message>
        <source>Try another keyword.</source>
        <translation>换个关键词试试。</translation>
    </message>
    <message>
        <source>Every good idea starts
with a quick note.</source>
        <translation>每个好点子，
都始于随手一记。</translation>
    </message>
    <message>
        <source>Open Capture to write your first one.</source>
        <translation>打开“记录”，写下第一条。</translation>
    </message>
    <message>
        <source>Untitled idea</source>
        <translation>未命名的想法</translation>
    </message>
    <message>
        <source>· Editing draft</source>
        <translation>· 有未保存的编辑</translation>
    </message>
    <message>
        <source>Open note: %@</source>
        <translation>打开笔记：%@</translation>
    </message>
    <!-- The edit screen -->
    <message>
        <source>All notes</source>
        <translation>所有笔记</translation>
    </message>
    <message>
        <source>Copy text</source>
        <translation>复制文字</translation>
    </message>
    <message>
        <source>Delete note</source>
        <translation>删除笔记</translation>
    </message>
    <message>
        <source>Note text</source>
        <translation>笔记内容</translation>
    </message>
    <message>
        <source>Save changes</source>
        <translation>保存更改</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>撤销</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>重做</translation>
    </message>
    <message>
        <source>Cut</source>
        <translation>剪切</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>复制</translation>
    </message>
    <message>
        <source>Copied</source>
        <translation>已复制</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>粘贴</translation>
    </message>
    <message>
        <source>Select all</source>
        <translation>全选</translation>
    </message>
    <message>
        <source>Delete this note?</source>
        <translation>删除这条笔记？</translation>
    </message>
    <message>
        <source>This removes the note and its editing draft from this Mac. You cannot undo this in the app.</source>
        <translation>这会从本机移除这条笔记及其编辑草稿。此操作无法在应用内撤销。</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <!-- The state of the saving -->
    <message>
        <source>Saved on this Mac</source>
        <translation>已保存在本机</translation>
    </message>
    <message>
        <source>Saving draft…</source>
        <translation>正在保存草稿…</translation>
    </message>
    <message>
        <source>Not saved · Retry</source>
        <translation>未保存 · 请重试</translation>
    </message>
    <message>
        <source>Could not read your notes. Original files were protected.</source>
        <translation>无法读取你的笔记。原始文件已受到保护。</translation>
    </message>
    <message>
        <source>What was typed last could not be read. It was left as it is.</source>
        <translation>上次输入的内容无法读取，已原样保留。</translation>
    </message>
    <message>
        <source>Could not save. Your text is still in this window.</source>
        <translation>无法保存。你的文字仍在此窗口中。</translation>
    </message>
    <!-- A start that is not to be -->
    <message>
        <source>OK</source>
        <translation>好</translation>
    </message>
    <message>
        <source>What was typed could not be saved, and is kept in “%@” for the next start.</source>
        <translation>输入的内容未能保存，已保留在“%@”中，供下次启动时恢复。</translation>
    </message>
    <message>
        <source>Not kept: the other program did not hand over what was dropped.</source>
        <translation>未保存：另一个程序没有交出拖放的内容。</translation>
    </message>
    <message>
        <source>Not kept: what was dropped is no UTF-8 text.</source>
        <translation>未保留：拖入的内容不是 UTF-8 文本。</translation>
    </message>
    <message>
        <source>Not kept: there is no text in what was dropped.</source>
        <translation>未保留：拖入的内容中没有文字。</translation>
    </message>
    <message>
        <source>Not inserted: a note has room for %@ characters and %@ lines, a paragraph for %@ characters.</source>
        <translation>未插入：一条笔记最多容纳 %@ 个字符、%@ 行，每段最多 %@ 个字符。</translation>
    </message>
    <message>
        <source>Shown for reading: a note has room for %@ characters and %@ lines, a paragraph for %@ characters.</source>
        <translation>仅供阅读：一条笔记最多容纳 %@ 个字符、%@ 行，每段最多 %@ 个字符。</translation>
    </message>
    <message>
        <source>What was typed could not be saved.</source>
        <translation>输入的内容未能保存。</translation>
    </message>
    <!-- Quitting -->
    <message>
        <source>Some changes could not be saved</source>
        <translation>部分更改未能保存</translation>
    </message>
    <message>
        <source>Return and retry, or copy your text first. Quitting now will lose changes that could not be written.</source>
        <translation>请返回重试，或先复制你的文字。现在退出将丢失未能写入的更改。</translation>
    </message>
    <message>
        <source>Return to notes</source>
        <translation>返回笔记</translation>
    </message>
    <message>
        <source>Quit anyway</source>
        <translation>仍要退出</translation>
    </message>
    <!-- A start that comes to nothing -->
    <message>
        <source>Quillmark is running on another display already. Go on there, or quit it first.</source>
        <translation>Quillmark 已在另一个显示器会话上运行。请在那里继续，或先退出它。</translation>
    </message>
    <message>
        <source>Quillmark is running already but does not answer. End it, then start it again.</source>
        <translation>Quillmark 已在运行，但没有响应。请先结束它，然后重新启动。</translation>
    </message>
    <message>
        <source>Another program has taken Quillmark’s name on the session bus. End that program, then start Quillmark again.</source>
        <translation>另一个程序占用了 Quillmark 在会话总线上的名称。请结束该程序，然后重新启动 Quillmark。</translation>
    </message>
    <!-- Why the notes folder was refused -->
    <message>
        <source>Unsupported note version: %d. Original files were left untouched.</source>
        <translation>不支持的笔记版本：%d。原始文件未作改动。</translation>
    </message>
    <message>
        <source>A Markdown file has invalid metadata. Original files were left untouched.</source>
        <translation>有 Markdown 文件的元数据无效。原始文件未作改动。</translation>
    </message>
    <message>
        <source>Notes changed outside Quillmark. Copy your pending text and reopen the app to reload the files.</source>
        <translation>笔记已在 Quillmark 之外被更改。请先复制尚未保存的文字，再重新打开应用以载入文件。</translation>
    </message>
    <message>
        <source>A recovery copy needs attention. Original files were preserved in the data folder.</source>
        <translation>有一份恢复副本需要处理。原始文件已保留在数据文件夹中。</translation>
    </message>
    <!-- Why a file could not be read or written -->
    <message>
        <source>“%@” is not UTF-8 text. Convert it or move it away, then reopen the app.</source>
        <translation>“%@”不是 UTF-8 文本。请转换或移走它，然后重新打开应用。</translation>
    </message>
    <message>
        <source>“%@” is not an ordinary file. Move it away, then reopen the app.</source>
        <translation>“%@”不是普通文件。请将它移走，然后重新打开应用。</translation>
    </message>
    <message>
        <source>“%@” is not a folder of its own. Move it away, then reopen the app.</source>
        <translation>“%@”不是独立的文件夹。请将它移走，然后重新打开应用。</translation>
    </message>
    <message>
        <source>“%@” belongs to another disk. Unmount it, then try again.</source>
        <translation>“%@”属于另一块磁盘。请将它卸载，然后重试。</translation>
    </message>
    <message>
        <source>“%@” is too large for a note. Shorten it or move it away, then try again.</source>
        <translation>“%@”过大，不能用作笔记。请缩短或移走它，然后重试。</translation>
    </message>
    <message>
        <source>“%@” can hold no more than 100,000 notes. Delete some or move them away, then try again.</source>
        <translation>“%@”最多可容纳 100,000 条笔记。请删除或移走一些，然后重试。</translation>
    </message>
    <message>
        <source>“%@” can hold no more than 256 MiB of text. Delete notes or move them away, then try again.</source>
        <translation>“%@”最多可容纳 256 MiB 文本。请删除或移走一些笔记，然后重试。</translation>
    </message>
    <message>
        <source>“%@” is the lock of an editor in which that note is open with changes. Save or close it there, then reopen the app.</source>
        <translation>“%@”是编辑器的锁：该笔记在其中打开并有更改。请在那里保存或关闭它，然后重新打开应用。</translation>
    </message>
    <message>
        <source>“%@” cannot be replaced: it comes from a lower layer of an overlay file system. Move it away, put a copy in its place, then reopen the app.</source>
        <translation>无法替换“%@”：它来自叠加文件系统的下层。请将它移走，在原处放一份副本，然后重新打开应用。</translation>
    </message>
    <message>
        <source>“%@” is being changed by another program again and again. Wait until that is done, then try again.</source>
        <translation>另一个程序不断更改“%@”。请等它完成，然后重试。</translation>
    </message>
    <message>
        <source>“%@” is in use by another Quillmark: go on there, or quit that one first.</source>
        <translation>另一个 Quillmark 正在使用“%@”：请在那里继续，或先退出它。</translation>
    </message>
    <message>
        <source>“%@” is not the folder that was there when Quillmark started. Quit Quillmark, then start it again.</source>
        <translation>“%@”不是 Quillmark 启动时的那个文件夹。请退出 Quillmark，然后重新启动。</translation>
    </message>
    <message>
        <source>“%@” lies in too many folders. Move it further up or away, then try again.</source>
        <translation>“%@”所在的文件夹层级过深。请将它移到更上层或移走，然后重试。</translation>
    </message>
    <message>
        <source>“%@” is the second draft of one note. Move one of the two away, then reopen the app.</source>
        <translation>“%@”是同一条笔记的第二份草稿。请移走其中一份，然后重新打开应用。</translation>
    </message>
    <message>
        <source>“%@” has too long a path. Move your data to a folder with a shorter one, then reopen the app.</source>
        <translation>“%@”的路径过长。请将数据移到路径较短的文件夹，然后重新打开应用。</translation>
    </message>
    <message>
        <source>“%@” was not written: its text holds a broken character. Remove it, then try again.</source>
        <translation>“%@”未写入：文字中有损坏的字符。请删除该字符，然后重试。</translation>
    </message>
    <message>
        <source>“%@” was not written: the disk is full. Free some space, then try again.</source>
        <translation>“%@”未写入：磁盘已满。请腾出一些空间，然后重试。</translation>
    </message>
    <message>
        <source>“%@” was not written: your disk quota is used up. Delete other files, then try again.</source>
        <translation>“%@”未写入：磁盘配额已用完。请删除其他文件，然后重试。</translation>
    </message>
    <message>
        <source>“%@” was not written: it would be larger than a file may be. Raise the limit, then try again.</source>
        <translation>“%@”未写入：它将超出文件大小的限制。请提高该限制，然后重试。</translation>
    </message>
    <message>
        <source>“%@” may not be used. Check its permissions and its owner, then try again.</source>
        <translation>没有使用“%@”的权限。请检查它的权限和所有者，然后重试。</translation>
    </message>
    <message>
        <source>“%@” is on a read-only disk. Make the disk writable, then try again.</source>
        <translation>“%@”位于只读磁盘上。请将磁盘改为可写，然后重试。</translation>
    </message>
    <message>
        <source>“%@” was not opened: too many files are open. Close some programs, then try again.</source>
        <translation>“%@”未打开：打开的文件过多。请关闭一些程序，然后重试。</translation>
    </message>
    <message>
        <source>“%@” is missing. Put it back, then reopen the app.</source>
        <translation>“%@”不见了。请将它放回原处，然后重新打开应用。</translation>
    </message>
    <message>
        <source>“%@” could not be used: the disk reports an error. Check the disk, then try again.</source>
        <translation>“%@”无法使用：磁盘报告错误。请检查磁盘，然后重试。</translation>
    </message>
    <message>
        <source>“%@” could not be used: %@. Mend that, then try again.</source>
        <translation>“%@”无法使用：%@。请排除此问题，然后重试。</translation>
    </message>
    <message>
        <source>“%@” could not be used: the system reports error %d. Mend that, then try again.</source>
        <translation>“%@”无法使用：系统报告错误 %d。请排除此问题，然后重试。</translation>
    </message>
    <message>
        <source>Argument list too long</source>
        <translation>参数过长</translation>
    </message>
    <message>
        <source>Cannot allocate memory</source>
        <translation>内存不足</translation>
    </message>
    <message>
        <source>Device or resource busy</source>
        <translation>设备或资源正忙</translation>
    </message>
    <message>
        <source>Invalid argument</source>
        <translation>参数无效</translation>
    </message>
    <message>
        <source>Too many levels of symbolic links</source>
        <translation>符号链接的层级过多</translation>
    </message>
    <message>
        <source>Not a directory</source>
        <translation>它不是文件夹</translation>
    </message>
    <message>
        <source>Is a directory</source>
        <translation>它是文件夹</translation>
    </message>
    <message>
        <source>File exists</source>
        <translation>文件已存在</translation>
    </message>
    <message>
        <source>Directory not empty</source>
        <translation>文件夹不为空</translation>
    </message>
    <message>
        <source>Invalid cross-device link</source>
        <translation>不能跨磁盘链接</translation>
    </message>
    <message>
        <source>Too many links</source>
        <translation>链接过多</translation>
    </message>
    <message>
        <source>No such device or address</source>
        <translation>没有这个设备或地址</translation>
    </message>
    <message>
        <source>No such device</source>
        <translation>没有这个设备</translation>
    </message>
    <message>
        <source>Text file busy</source>
        <translation>文件正在运行</translation>
    </message>
    <message>
        <source>Resource temporarily unavailable</source>
        <translation>资源暂时不可用</translation>
    </message>
    <message>
        <source>Interrupted system call</source>
        <translation>系统调用被中断</translation>
    </message>
    <message>
        <source>Bad file descriptor</source>
        <translation>文件描述符无效</translation>
    </message>
    <message>
        <source>Function not implemented</source>
        <translation>系统没有此功能</translation>
    </message>
    <message>
        <source>Operation not supported</source>
        <translation>不支持此操作</translation>
    </message>
    <message>
        <source>Value too large for defined data type</source>
        <translation>数值过大</translation>
    </message>
    <message>
        <source>No locks available</source>
        <translation>没有可用的锁</translation>
    </message>
    <message>
        <source>Resource deadlock avoided</source>
        <translation>锁会互相等待</translation>
    </message>
    <message>
        <source>Stale file handle</source>
        <translation>文件句柄已失效</translation>
    </message>
    <message>
        <source>Broken pipe</source>
        <translation>管道已断开</translation>
    </message>
    <message>
        <source>No data available</source>
        <translation>没有数据</translation>
    </message>
    <message>
        <source>Protocol error</source>
        <translation>协议错误</translation>
    </message>
    <message>
        <source>Invalid or incomplete multibyte or wide character</source>
        <translation>文件名含有此磁盘不支持的字符</translation>
    </message>
    <message>
        <source>Connection timed out</source>
        <translation>连接超时</translation>
    </message>
    <message>
        <source>Transport endpoint is not connected</source>
        <translation>连接已断开</translation>
    </message>
    <message>
        <source>Connection refused</source>
        <translation>连接被拒绝</translation>
    </message>
    <message>
        <source>Connection reset by peer</source>
        <translation>对方断开了连接</translation>
    </message>
    <message>
        <source>Software caused connection abort</source>
        <translation>连接已中止</translation>
    </message>
    <message>
        <source>Cannot send after transport endpoint shutdown</source>
        <translation>连接已关闭</translation>
    </message>
    <message>
        <source>Host is down</source>
        <translation>主机没有响应</translation>
    </message>
    <message>
        <source>No route to host</source>
        <translation>无法连接到主机</translation>
    </message>
    <message>
        <source>Network is down</source>
        <translation>网络已断开</translation>
    </message>
    <message>
        <source>Network is unreachable</source>
        <translation>网络无法连接</translation>
    </message>
    <message>
        <source>Remote I/O error</source>
        <translation>远程读写错误</translation>
    </message>
    <message>
        <source>Structure needs cleaning</source>
        <translation>文件系统需要修复</translation>
    </message>
    <message>
        <source>No medium found</source>
        <translation>没有找到介质</translation>
    </message>
    <message>
        <source>Wrong medium type</source>
        <translation>介质类型不对</translation>
    </message>
    <message>
        <source>Required key not available</source>
        <translation>缺少所需的密钥</translation>
    </message>
    <message>
        <source>Key has expired</source>
        <translation>密钥已过期</translation>
    </message>
    <message>
        <source>Key has been revoked</source>
        <translation>密钥已被撤销</translation>
    </message>
    <message>
        <source>Key was rejected by service</source>
        <translation>密钥被拒绝</translation>
    </message>
    <message>
        <source>The older notes file “notes.json” cannot be read: there is a mistake in line %d, column %d. Mend it or move the file away, then reopen the app.</source>
        <translation>旧版笔记文件“notes.json”无法读取：第 %d 行第 %d 列有错误。请修复或移走该文件，然后重新打开应用。</translation>
    </message>
    <message>
        <source>The older notes file “notes.json” cannot be read: “%@” is missing. Mend it or move the file away, then reopen the app.</source>
        <translation>旧版笔记文件“notes.json”无法读取：缺少“%@”。请修复或移走该文件，然后重新打开应用。</translation>
    </message>
    <message>
        <source>The older notes file “notes.json” cannot be read: “%@” comes twice. Mend it or move the file away, then reopen the app.</source>
        <translation>旧版笔记文件“notes.json”无法读取：“%@”出现了两次。请修复或移走该文件，然后重新打开应用。</translation>
    </message>
    <message>
        <source>The older notes file “notes.json” cannot be read: “%@” has a wrong value. Mend it or move the file away, then reopen the app.</source>
        <translation>旧版笔记文件“notes.json”无法读取：“%@”的值不正确。请修复或移走该文件，然后重新打开应用。</translation>
    </message>
    <message>
        <source>The older notes file “notes.json” cannot be read: “%@” is nested too deeply. Mend it or move the file away, then reopen the app.</source>
        <translation>旧版笔记文件“notes.json”无法读取：“%@”嵌套过深。请修复或移走该文件，然后重新打开应用。</translation>
    </message>
    <message>
        <source>The older notes file “notes.json” has version %d and cannot be read: “%@” is not as in version 1. Mend it or move the file away, then reopen the app.</source>
        <translation>旧版笔记文件“notes.json”的版本为 %d，无法读取：“%@”与版本 1 不符。请修复或移走该文件，然后重新打开应用。</translation>
    </message>
    <!-- The command line -->
    <message>
        <source>Usage: quillmark-notes COMMAND [ARGUMENT]…

Adds to Quillmark’s notes, finds and copies them, beside its window or without.

  add [TEXT]…          saves a note, without TEXT from the standard input
  list                 lists the notes, newest first
  search WORD…         lists the notes that hold the words
  show ID              prints one note; the beginning of ID is enough
  export FOLDER        copies every note into FOLDER
  import FILE…         saves each text file as a note
  check                says what is wrong with the notes; changes nothing

  --json               with list, search and show: as JSON
  --repair             with check: takes copies of notes in as notes; asks first
  --yes                with check --repair: does not ask
  --version            prints the version and ends
  --help               prints this and ends
</source>
        <translation>用法：quillmark-notes COMMAND [ARGUMENT]…

添加、查找和复制 Quillmark 的笔记，窗口开着与否都可以。

  add [TEXT]…          保存一条笔记；没有 TEXT 时读取标准输入
  list                 列出笔记，最新的在前
  search WORD…         列出含有这些文字的笔记
  show ID              输出一条笔记；ID 的开头几位即可
  export FOLDER        把每条笔记复制到 FOLDER
  import FILE…         把每个文本文件保存为一条笔记
  check                指出笔记有什么问题；不作任何更改

  --json               用于 list、search 和 show：以 JSON 输出
  --repair             用于 check：把笔记的副本收为笔记；会先询问
  --yes                用于 check --repair：不询问
  --version            输出版本后结束
  --help               输出本说明后结束
</translation>
    </message>
    <message>
        <source>That is not how it is called. See: quillmark-notes --help</source>
        <translation>用法不对。请看：quillmark-notes --help</translation>
    </message>
    <message>
        <source>Type the note, then press Ctrl+D.</source>
        <translation>输入笔记，然后按 Ctrl+D。</translation>
    </message>
    <message>
        <source>The standard input could not be read.</source>
        <translation>无法读取标准输入。</translation>
    </message>
    <message>
        <source>The text is too large for a note.</source>
        <translation>文字太长，一条笔记放不下。</translation>
    </message>
    <message>
        <source>The text is not UTF-8.</source>
        <translation>文字不是 UTF-8。</translation>
    </message>
    <message>
        <source>There is no text to save.</source>
        <translation>没有可保存的文字。</translation>
    </message>
    <message>
        <source>The output could not be written: %@</source>
        <translation>无法写出结果：%@</translation>
    </message>
    <message>
        <source>Saving the note…</source>
        <translation>正在保存笔记…</translation>
    </message>
    <message>
        <source>Reading notes…</source>
        <translation>正在读取笔记…</translation>
    </message>
    <message>
        <source>There is no note “%@”.</source>
        <translation>没有笔记“%@”。</translation>
    </message>
    <message>
        <source>“%@” is the beginning of more than one note.</source>
        <translation>不止一条笔记以“%@”开头。</translation>
    </message>
    <message>
        <source>Exporting notes…</source>
        <translation>正在导出笔记…</translation>
    </message>
    <message>
        <source>Importing notes…</source>
        <translation>正在导入笔记…</translation>
    </message>
    <message>
        <source>“%@” is too large for a note.</source>
        <translation>“%@”太大，一条笔记放不下。</translation>
    </message>
    <message>
        <source>“%@” is not an ordinary file.</source>
        <translation>“%@”不是普通文件。</translation>
    </message>
    <message>
        <source>“%@” cannot be read: %@</source>
        <translation>无法读取“%@”：%@</translation>
    </message>
    <message>
        <source>“%@” is not UTF-8 text.</source>
        <translation>“%@”不是 UTF-8 文本。</translation>
    </message>
    <message>
        <source>“%@” holds no text.</source>
        <translation>“%@”里没有文字。</translation>
    </message>
    <message>
        <source>“%@” has a time that no note can have.</source>
        <translation>“%@”的时间超出了笔记可用的范围。</translation>
    </message>
    <message>
        <source>These files are more than the notes may hold.</source>
        <translation>这些文件超出了笔记的总容量。</translation>
    </message>
    <message>
        <source>“%@” is in use by another Quillmark that cannot be asked to add notes. Quit that one, then try again.</source>
        <translation>“%@”正被另一个 Quillmark 使用，而又无法请它添加笔记。请先退出它，然后重试。</translation>
    </message>
    <message>
        <source>Quillmark runs but does not answer. Look whether it has saved the text before you try again.</source>
        <translation>Quillmark 正在运行，但没有回应。重试之前，请先看看文字是否已经保存。</translation>
    </message>
    <message>
        <source>Looking through the notes…</source>
        <translation>正在检查笔记…</translation>
    </message>
    <message>
        <source>Nothing is wrong with the notes.</source>
        <translation>笔记没有问题。</translation>
    </message>
    <message>
        <source>A file of another program. Quillmark leaves it alone.</source>
        <translation>其他程序的文件。Quillmark 不会动它。</translation>
    </message>
    <message>
        <source>The lock of an editor that has a note open, or ended while it had.</source>
        <translation>编辑器的锁：有笔记正在其中打开，或者它在打开时意外结束了。</translation>
    </message>
    <message>
        <source>A conflict copy: a program that synchronises folders found two versions of a file. “quillmark-notes check --repair” makes notes of copies of notes; compare others and move them away.</source>
        <translation>冲突副本：同步文件夹的程序发现一个文件有两个版本。“quillmark-notes check --repair”会把笔记的副本变成笔记；其他副本请比较后移走。</translation>
    </message>
    <message>
        <source>A program that synchronises folders shares this one. Quillmark exchanges it with a new one: share “Penwick” instead.</source>
        <translation>有同步文件夹的程序正在共享此文件夹，而 Quillmark 会用新文件夹替换它：请改为共享“Penwick”。</translation>
    </message>
    <message>
        <source>A conflict copy of a note, by %@.</source>
        <translation>笔记的冲突副本，由 %@ 生成。</translation>
    </message>
    <message>
        <source>A conflict copy of a draft, by %@.</source>
        <translation>草稿的冲突副本，由 %@ 生成。</translation>
    </message>
    <message>
        <source>A recovery copy that another computer made.</source>
        <translation>另一台电脑生成的恢复副本。</translation>
    </message>
    <message>
        <source>A recovery copy.</source>
        <translation>恢复副本。</translation>
    </message>
    <message>
        <source>It becomes a note of its own.</source>
        <translation>它会成为一条单独的笔记。</translation>
    </message>
    <message>
        <source>It becomes the note that is missing.</source>
        <translation>它会成为缺失的那条笔记。</translation>
    </message>
    <message>
        <source>The notes hold its text already. It is put away.</source>
        <translation>笔记中已有它的文字。它会被收存。</translation>
    </message>
    <message>
        <source>It is empty. It is put away.</source>
        <translation>它是空的。它会被收存。</translation>
    </message>
    <message>
        <source>It is no text. It is put away.</source>
        <translation>它不是文字。它会被收存。</translation>
    </message>
    <message>
        <source>Texts that only it has become notes: %d.</source>
        <translation>只有它才有的文字会成为笔记：%d 条。</translation>
    </message>
    <message>
        <source>The notes hold all of its texts. It is put away.</source>
        <translation>笔记中已有它的全部文字。它会被收存。</translation>
    </message>
    <message>
        <source>It is all there is of the notes, and gets their place.</source>
        <translation>笔记只剩下它了，它会回到笔记的位置。</translation>
    </message>
    <message>
        <source>Another computer made this recovery copy.</source>
        <translation>这个恢复副本是另一台电脑生成的。</translation>
    </message>
    <message>
        <source>The swap file of an editor that has a note open, or ended while it had. It may hold text that is not saved.</source>
        <translation>编辑器的交换文件：有笔记正在其中打开，或者它在打开时意外结束了。其中可能有未保存的文字。</translation>
    </message>
    <message>
        <source>“%@” is in use by another Quillmark. Choose “Take in copies…” in its window, or quit it, then try again.</source>
        <translation>“%@”正被另一个 Quillmark 使用。请在其窗口中选择“收入副本…”，或退出它后重试。</translation>
    </message>
    <message>
        <source>New notes: %d. The files listed are then kept in “%@”. Take them in? [y/N] </source>
        <translation>新笔记：%d 条。列出的文件随后收存在“%@”中。要收入吗？[y/N] </translation>
    </message>
    <message>
        <source>There is nothing that could be taken in.</source>
        <translation>没有可以收入的内容。</translation>
    </message>
    <message>
        <source>Nothing was changed. With --yes the files listed are taken in.</source>
        <translation>未作任何更改。加上 --yes 会收入列出的文件。</translation>
    </message>
    <message>
        <source>Taking in copies…</source>
        <translation>正在收入副本…</translation>
    </message>
    <message>
        <source>The files themselves are kept in “%@”.</source>
        <translation>原文件收存在“%@”中。</translation>
    </message>
    <message>
        <source>A synchronising program left copies of notes here. They are not among your notes yet.</source>
        <translation>同步程序在这里留下了笔记的副本，它们还不在你的笔记之中。</translation>
    </message>
    <message>
        <source>Take in copies…</source>
        <translation>收入副本…</translation>
    </message>
    <message>
        <source>Take in copies?</source>
        <translation>要收入这些副本吗？</translation>
    </message>
    <message>
        <source>Take in</source>
        <translation>收入</translation>
    </message>
    <message>
        <source>And %d more.</source>
        <translation>另有 %d 个。</translation>
    </message>
    <message>
        <source>It keeps the notes from being loaded.</source>
        <translation>它使笔记无法载入。</translation>
    </message>
    <message>
        <source>A backup file, as editors make them.</source>
        <translation>编辑器留下的备份文件。</translation>
    </message>
    <message>
        <source>A copy of the folder “Markdown”.</source>
        <translation>文件夹“Markdown”的副本。</translation>
    </message>
    <message>
        <source>A copy of the folder “Drafts”.</source>
        <translation>文件夹“Drafts”的副本。</translation>
    </message>
    <message>
        <source>A copy of one note.</source>
        <translation>一条笔记的副本。</translation>
    </message>
    <message>
        <source>A copy of a draft, most often “capture.md”.</source>
        <translation>一份草稿的副本，多半是“capture.md”。</translation>
    </message>
    <message>
        <source>It cannot be read.</source>
        <translation>无法读取。</translation>
    </message>
    <message>
        <source>Only in the copy.</source>
        <translation>只在副本中。</translation>
    </message>
    <message>
        <source>Not in the copy.</source>
        <translation>副本中没有。</translation>
    </message>
    <message>
        <source>Different from that in the notes.</source>
        <translation>与笔记中的不同。</translation>
    </message>
    <message>
        <source>Not in the notes.</source>
        <translation>笔记中没有。</translation>
    </message>
    <message>
        <source>The same as the copy.</source>
        <translation>与副本相同。</translation>
    </message>
    <message>
        <source>Different from the copy.</source>
        <translation>与副本不同。</translation>
    </message>
    <message>
        <source>It names another format.</source>
        <translation>它写明的是另一种格式。</translation>
    </message>
    <message>
        <source>It is a draft of a note that is not there.</source>
        <translation>它是一份草稿，但所属的笔记不存在。</translation>
    </message>
    <message>
        <source>Its name is that of no draft.</source>
        <translation>它的名称不是草稿的名称。</translation>
    </message>
    <message>
        <source>Its header is not that of a note.</source>
        <translation>它的开头不是笔记应有的格式。</translation>
    </message>
    <message>
        <source>Its name is not the identifier in its header.</source>
        <translation>它的名称与开头写明的标识不同。</translation>
    </message>
    <message>
        <source>Another file is the same note.</source>
        <translation>另有一个文件是同一条笔记。</translation>
    </message>
    <!-- The keys -->
    <message>
        <source>Keys</source>
        <translation>快捷键</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Fold the editor</source>
        <translation>收起编辑器</translation>
    </message>
    <message>
        <source>Search the notes</source>
        <translation>搜索笔记</translation>
    </message>
    <message>
        <source>Write a new thought</source>
        <translation>写新想法</translation>
    </message>
    <message>
        <source>Go to the other tab</source>
        <translation>切换到另一个标签</translation>
    </message>
    <message>
        <source>Go back to all notes</source>
        <translation>返回全部笔记</translation>
    </message>
    <message>
        <source>Delete the chosen note</source>
        <translation>删除选中的笔记</translation>
    </message>
    <message>
        <source>Show the keys</source>
        <translation>显示快捷键</translation>
    </message>
</context>
</TS>
