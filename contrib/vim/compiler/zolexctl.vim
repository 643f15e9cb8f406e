" Vim compiler file: the findings of zolexctl in a policies file.
" Copy it to ~/.vim/compiler, then:
"   :compiler zolexctl
"   :make %

if exists('current_compiler')
  finish
endif
let current_compiler = 'zolexctl'

CompilerSet makeprg=zolexctl\ check\ --format\ concise
" site.ini:3:1: warning: Array.A has no effect: zolex chooses the drives itself [ZX307]
" missing.ini: error: the file cannot be read: there is no such file or folder [ZX001]
CompilerSet errorformat=
      \%f:%l:%c:\ %trror:\ %m,
      \%f:%l:%c:\ %tarning:\ %m,
      \%f:%l:%c:\ %tote:\ %m,
      \%f:\ %trror:\ %m,
      \%f:\ %tarning:\ %m,
      \%-G%.%#
