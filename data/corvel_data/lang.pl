# Corvel: what users read, Polish.
#
# UTF-8, one "key = text" per line. In a text, \n is a line feed, \\ a backslash and \" a quotation
# mark. A text in double quotes keeps the blanks at its ends. Empty lines and lines that begin with #
# do not count. Every language file has the same keys.

# Ribbon: captions and the hints of the buttons.
group.Corvel = Corvel
btn_merge = Scalanie
btn_merge.hint = Scala wczytane projekty w jeden plik IFC.
merge_active = Scal aktywne
merge_active.hint = Scala aktywne obiekty wczytanych projektów w jeden plik IFC; obiekty nieaktywne są pomijane.
merge_visible = Scal widoczne
merge_visible.hint = Scala widoczne obiekty wczytanych projektów w jeden plik IFC; obiekty ukryte są pomijane.
merge_selected = Scal zaznaczone
merge_selected.hint = Scala zaznaczone obiekty wczytanych projektów w jeden plik IFC; pozostałe są pomijane.
options_window_name = Opcje scalania
btn_options_description = Określa postępowanie z powtórzonymi GUID, różnymi jednostkami i nieznanymi wartościami typów wyliczeniowych.
open_recent_created_file_button_name = Otwórz ostatni wynik
open_recent_created_file_button_description = Otwiera ostatnio scalony plik w nowym oknie.

# Captions of buttons of the viewer itself.
btn_set_coordinate_center = Ustaw początek układu współrzędnych
btn_set_coordinates = Ustaw współrzędne
btn_reset_coordinate_center = Przywróć początek układu współrzędnych

# Options window: a row has room for about 60 characters.
option_guid_duplication_group_name = Gdy GUID obiektu jest już używany
option_guid_duplication_generate = Nadaj obiektowi nowy GUID
option_guid_duplication_skip = Pomiń obiekt
option_guid_duplication_remember = Zapamiętaj wybór i nie pytaj ponownie
option_ignore_units = Ignoruj różnice jednostek (wartości nie są przeliczane)
option_ignore_enume_errors = Ignoruj nieznane wartości typów wyliczeniowych
btn_ok = OK
merge_specific = Kryterium scalania terenów, budynków i kondygnacji:

# The two choices of merge_specific.
name = Nazwa
nameAndGuid = Nazwa i GUID

# Progress. A colon and the name of a file may follow, as they may after btn_merge.
progress_bar_overall_progress = Postęp całkowity
checking_files = Sprawdzanie plików
reading_file = Wczytywanie pliku
deleting_entities_from = Usuwanie pominiętych obiektów
exporting_file_as = Zapisywanie pliku
finalizing = Kończenie
progress_bar_loading = Wczytywanie
progress_bar_deleting = Usuwanie
progress_bar_saving = Zapisywanie

# The question after the cancel button; btnCancelName is the caption of its box.
continue_question = Czy chcesz kontynuować?
progress_bar_cancel_message = Czy na pewno chcesz anulować?
btnCancelName = Anuluj

# Save dialog. "merged" goes straight behind the name of the first file: tower_merged.ifc.
filter_caption = Pliki IFC (*.ifc, *.ifczip)
merged = _scalony

# Message boxes of the merge.
error_caption = Błąd
no_file_selected_caption = Brak wczytanego modelu
no_file_selected_message = Nie wczytano żadnego modelu IFC. Aby rozpocząć scalanie, wczytaj co najmniej dwa modele.
combining_failed = Do scalania potrzebne są co najmniej dwa projekty. Upewnij się, że wybrane obiekty należą do co najmniej dwóch wczytanych projektów.
large_file_question = Łączny rozmiar scalanych plików przekracza 100 MB. Scalanie może trwać długo i wymagać dużej ilości pamięci.
show_log_question = Zgłoszono problemy. Czy chcesz otworzyć plik dziennika?

# Stands before the path of the log, at the end of every error box.
merge_combine_log = Plik dziennika:

# Before and behind the path of a file: the merge stops there.
unable_to_continue = "Nie udało się wczytać w całości pliku:\n"
merging_terminate = "\nScalanie zostanie przerwane."

# The report of projects that do not fit. Its sentences are, with the program's part in brackets:
#   not_all_projects_merge [ "a.ifc"(IFC4)] due_to_invalid_schema [.]
#   not_all_projects_merge [ "a.ifc"] due_to_invalid_units [: and the units of a.ifc]
# A list of files follows the last two.
not_all_projects_merge = Nie wszystkie projekty można scalić z projektem
due_to_invalid_schema = ", ponieważ mają inny schemat IFC"
due_to_invalid_units = ", ponieważ nie używają jego jednostek"
projects_that_will_not_be_merged = "\nProjekty, które nie zostaną scalone:\n"
projects_that_will_be_merged = "\nProjekty, które zostaną scalone z pierwszym:"

# Errors of files. A blank and what is behind the dots follows.
#   could_not_open_file ... . File path: PATH
#   could_not_open_file_extension ... PATH
#   could_not_open_file_write ... File path: PATH
#   unknown_schema_identifier ... : IDENTIFIER
#   unknown_entity_name_in_schema ... NAME
could_not_open_file = Nie udało się otworzyć pliku
could_not_open_file_extension = Nieobsługiwany typ pliku:
could_not_open_file_write = Nie udało się otworzyć pliku do zapisu.
unknown_schema_identifier = Nieznany identyfikator schematu
unknown_entity_name_in_schema = Schemat nie zawiera klasy o nazwie
fail_to_open_last_created_file_message = Nie udało się otworzyć ostatnio scalonego pliku.
