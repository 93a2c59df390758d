# bash completion for zebcli(8) and zebcli-sim(8)
#
# Everything offered here stands in this file: completing a line never runs the tool, which would query the controllers
# and write to the command log.

# One row per command word: what may follow it, in groups parted by blanks. Of a group, whose words are parted by "|",
# one word may be given. CTRL, LD and PD stand for the target options. A word that ends in "[" or "sz" goes on.
declare -gA _zebcli_commands=(
    [lde]=''
    [ldc]='-r0[|-r1[|-r5[|-r6[|-r10|-cachecade[ -array0[ -array1[ -wt|-wb|-wbcb -nora|-ra -direct|-cached -sz CTRL'
    [lddel]=''
    [pdhsp]='-ghs|-dhs|-rmv -nochk PD CTRL'
    [ctrlinfo]='CTRL'
    [ldpdinfo]='LD CTRL'
    [pdinfo]='PD CTRL'
    [cbinfo]='CTRL'
    [cblearn]='CTRL'
    [enclinfo]='CTRL'
    [v]=''
    [h]=''
    [help]=''
    [?]=''
    [ldsetprop]='-name -wt|-wb|-wbcb -nora|-ra -direct|-cached -rw|-ro|-blocked -endskcache|-disdskcache|-unchanged LD CTRL'
    [ctrlautorbld]='-enbl|-dsbl CTRL'
    [ctrlsetprop]='-trh|-trm|-trl -hddcpybkenbl|-hddcpybkdsbl -ssdcpybkenbl|-ssdcpybkdsbl -pdfailenbl|-pdfaildsbl CTRL'
    [ctrlpr]='-dsbl|-enblauto|-enblman -hour|-day|-week|-month -setstarttime -start|-stop CTRL'
    [ldinit]='-start|-stop LD CTRL'
    [pdrbld]='-start PD CTRL'
    [ldcc]='-start|-stop LD CTRL'
    [ldpdprog]=''
    [tstevt]='-inf|-wrn|-err'
    [pdlocate]='-start|-stop PD CTRL'
    [pdonline]='PD CTRL'
    [pdoffline]='PD CTRL'
    [pdmakegood]='PD CTRL'
    [log]=''
    [sse]=''
    [snapshot]=''
)

# Appends to COMPREPLY those of the words $2... that begin with $1. (Not compgen -W: it would expand "-?" and "-pd[".)
_zebcli_offer() {
    local current=$1 word
    shift
    for word in "$@"; do
        if [[ $word == "$current"* ]]; then
            COMPREPLY+=("$word")
        fi
    done
}

# Offers the controller options that go on from $1: all of them, or with "-a0," typed, each further number.
_zebcli_offer_controllers() {
    local current=$1 number
    if [[ $current =~ ^-a[0-3](,[0-3])*,$ ]]; then
        for number in 0 1 2 3; do
            if [[ $current != *"$number"* ]]; then
                COMPREPLY+=("$current$number")
            fi
        done
    else
        _zebcli_offer "$current" -a0 -a1 -a2 -a3 -aAll
    fi
}

# Answers whether one of the words $2... (the words typed so far) is of the group $1.
_zebcli_given() {
    local group=$1 word
    shift
    for word in "$@"; do
        case $group in
            CTRL) [[ $word == -a[0-9A]* ]] && return 0 ;;
            LD) [[ $word == -L* ]] && return 0 ;;
            PD) [[ $word == '-pd['* ]] && return 0 ;;
            *) [[ "|$group|" == *"|$word|"* || "|$group|" == *"|${word%%\[*}[|"* ]] && return 0 ;;
        esac
    done
    return 1
}

# Offers what may follow the command word $2 with the options $3... so far, and begins with $1.
_zebcli_offer_options() {
    local current=$1 command=$2 group
    local -a groups words
    shift 2
    read -ra groups <<<"${_zebcli_commands[$command]-}"
    for group in "${groups[@]}"; do
        _zebcli_given "$group" "$@" && continue
        case $group in
            CTRL) _zebcli_offer_controllers "$current" ;;
            LD) _zebcli_offer "$current" -Lall ;;
            PD) _zebcli_offer "$current" '-pd[' ;;
            *)
                IFS='|' read -ra words <<<"$group"
                _zebcli_offer "$current" "${words[@]}"
                ;;
        esac
    done
    if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == @(*\[|-sz) ]]; then
        compopt -o nospace
    fi
}

# Completes a command line of zebcli. The line is split at blanks here, because readline's own words also end at the
# ":" inside a PD list.
_zebcli() {
    local -a words commands
    local current='' line=${COMP_LINE:0:COMP_POINT}
    COMPREPLY=()
    read -ra words <<<"$line"
    if [[ -n $line && $line != *[[:blank:]] ]]; then
        current=${words[-1]}
        unset 'words[-1]'
    fi
    if [[ ${#words[@]} -le 1 ]]; then
        commands=("${!_zebcli_commands[@]}")
        _zebcli_offer "$current" "${commands[@]/#/-}"
    elif [[ ${words[-1]} != -@(name|setstarttime) && $current != *[:=]* && ${words[1]} == -* ]]; then
        _zebcli_offer_options "$current" "${words[1]#-}" "${words[@]:2}"
    fi
}

complete -F _zebcli zebcli zebcli-sim
