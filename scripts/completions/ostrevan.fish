# Completion of ostrevan's command line for fish. The program itself says what fits.
function __ostrevan_complete
    set -l words (commandline -opc)
    set -l last (commandline -ct | string unescape)
    for line in ($words[1] --quiet complete -- $words[2..-1] "$last" 2>/dev/null)
        switch $line
            case ''
            case ':'\t'*'
                __fish_complete_path $last
            case '::'\t'*'
                __fish_complete_directories $last
            case '*'
                echo $line
        end
    end
end
complete -c ostrevan -f -a '(__ostrevan_complete)'
