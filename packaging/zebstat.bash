# shellcheck shell=bash
# bash completion for zebstat

_zebstat() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command='' words='' word
  local commands='json metrics check wait watch html schema'
  COMPREPLY=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case " $commands " in
      *" $word "*) command=$word ;;
    esac
  done
  case $previous in
    -a) words='all 0 1 2 3' ;;
    --timeout | --interval | --max | --warn-temperature | --critical-temperature | --for-logical-drive) return ;;
    --no-spare-is) words='warning critical' ;;
    --for) words='rebuild patrol_read clear copyback initialization background_initialization consistency_check reconstruction' ;;
    --output)
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return
      ;;
    *)
      case $command in
        '') words="-a --timeout --help --version $commands" ;;
        json) words='--pretty --redact --help' ;;
        metrics) words='--output --help' ;;
        check) words='--warn-temperature --critical-temperature --no-spare-is --help' ;;
        wait) words='--for --for-logical-drive --max --interval --help' ;;
        watch) words='--interval --once --until-done --help' ;;
        html) words='--output --redact --help' ;;
        schema) words='--help' ;;
      esac
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -F _zebstat zebstat
