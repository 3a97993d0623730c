# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# Completion of scanpage for fish.
complete -c scanpage -s h -l help -d 'Print the help and exit'
complete -c scanpage -l from -r -F -d 'File with the names of more pages'
complete -c scanpage -s 0 -l null -d 'Names in the list end with a NUL character'
complete -c scanpage -s o -l output -x -a '(__fish_complete_directories)' -d 'Folder for the results'
complete -c scanpage -l format -x -a 'jpeg pbm g4' -d 'Results to write'
complete -c scanpage -l resume -d 'Keep results that are complete'
complete -c scanpage -l overwrite -d 'Replace files that scanpage did not make'
complete -c scanpage -l damaged -x -a 'keep refuse' -d 'What to do with damaged pages'
complete -c scanpage -s j -l jobs -x -d 'Pages at once'
complete -c scanpage -l angle -x -d 'Turn by this many degrees'
complete -c scanpage -l orient -d 'Turn pages that lie on their side or head'
complete -c scanpage -l background -x -a 'keep flatten' -d 'Shading and colour of the paper'
complete -c scanpage -l denoise -x -d 'Reduce noise, 0 to 10'
complete -c scanpage -l median -x -a 'none cross weighted colour' -d 'Median over 3 x 3 pixels'
complete -c scanpage -l assume-dpi -x -d 'Resolution of pages that state none'
complete -c scanpage -l dpi -x -d 'Scale to this resolution'
complete -c scanpage -l mode -x -a '0 286 389 450 788' -d 'JPEG quality by mode code'
complete -c scanpage -l threshold -x -d 'Largest grey value that is black'
complete -c scanpage -l contact-sheet -r -F -d 'PNG with pages before and after'
complete -c scanpage -s v -l verbose -d 'Describe each page on standard error'
