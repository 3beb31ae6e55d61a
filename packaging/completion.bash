# Completion of pocket-strandview's arguments for bash.

_pocket_strandview() {
    local word=$2 before=$3 endings='bkp|abk|rbk'
    COMPREPLY=()
    # Bash takes "--device=DIR" for three words.
    if [[ $before == = ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    elif [[ $word == = ]]; then
        before=${COMP_WORDS[COMP_CWORD - 1]} word=
    fi
    case $before in
    --device | --air)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -d -- "$word")
        return
        ;;
    -[BbRr]* | /[BbRr]) endings=bkp ;;
    -[Aa]* | /[Aa]) endings=abk ;;
    *)
        if [[ $word == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '-A -B -D -I -P -R -S --air --check --device --help --samples --version' -- "$word")
            return
        fi
        ;;
    esac
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -d -- "$word"; compgen -f -- "$word" | grep -iE "\.($endings)$")
}
complete -F _pocket_strandview pocket-strandview
