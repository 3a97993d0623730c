# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# Completion of scanpage for bash.
_scanpage() {
    local word=${COMP_WORDS[COMP_CWORD]} words= ending endings='jpg jpeg png tif tiff pnm pbm pgm ppm'
    COMPREPLY=()
    if [[ ${COMP_WORDS[1]} == manifest && $COMP_CWORD -gt 1 ]]; then
        if [[ $word == -* ]]; then
            words='-h --help --from --json --expected --retry --verify --whole'
            mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
        else
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
        fi
        return
    fi
    case ${COMP_WORDS[COMP_CWORD - 1]} in
        --format) words='jpeg pbm g4' ;;
        --damaged) words='keep refuse' ;;
        --background) words='keep flatten' ;;
        --median) words='none cross weighted colour' ;;
        --other) words='pass drop' ;;
        --compress) words='none gzip zstd' ;;
        --mode) words='0 286 389 450 788' ;;
        -o | --output)
            if [[ " ${COMP_WORDS[*]} " == *' --tar '* ]]; then
                mapfile -t COMPREPLY < <(compgen -f -- "$word")
            else
                mapfile -t COMPREPLY < <(compgen -d -- "$word")
            fi
            return
            ;;
        --from | --manifest | --contact-sheet | --pdf | --tiff)
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            return
            ;;
        -j | --jobs | --angle | --denoise | --assume-dpi | --dpi | --quality | --threshold) return ;;    # a number
        *)
            if [[ $word != -* ]]; then
                [[ " ${COMP_WORDS[*]} " != *' --tar '* ]] || endings='tar gz tgz bz2 xz lz4 zst'
                mapfile -t COMPREPLY < <(
                    compgen -d -- "$word"
                    for ending in $endings; do
                        compgen -f -X "!*.$ending" -- "$word"
                        compgen -f -X "!*.${ending^^}" -- "$word"
                    done
                )
                return
            fi
            words='-h --help --version -r --recursive --from -0 --null -o --output --pdf --tiff --format --tar --manifest --other --compress
                --resume --overwrite --damaged -j --jobs --angle --orient --background --denoise --median --assume-dpi --dpi
                --quality --mode --threshold --dry-run --contact-sheet -v --verbose -q --quiet'
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o filenames -F _scanpage scanpage
