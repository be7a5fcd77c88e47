# Corvel: what users read, Spanish.
#
# UTF-8, one "key = text" per line. In a text, \n is a line feed, \\ a backslash and \" a quotation
# mark. A text in double quotes keeps the blanks at its ends. Empty lines and lines that begin with #
# do not count. Every language file has the same keys.

# Ribbon: captions and the hints of the buttons.
group.Corvel = Corvel
btn_merge = Fusión
btn_merge.hint = Fusiona los proyectos cargados en un único archivo IFC.
merge_active = Fusionar activos
merge_active.hint = Fusiona los objetos activos de los proyectos cargados en un único archivo IFC; los inactivos se omiten.
merge_visible = Fusionar visibles
merge_visible.hint = Fusiona los objetos visibles de los proyectos cargados en un único archivo IFC; los ocultos se omiten.
merge_selected = Fusionar selección
merge_selected.hint = Fusiona los objetos seleccionados de los proyectos cargados en un único archivo IFC; los demás se omiten.
options_window_name = Opciones de fusión
btn_options_description = Define cómo se tratan los GUID duplicados, las unidades distintas y los valores de enumeración desconocidos.
open_recent_created_file_button_name = Abrir último resultado
open_recent_created_file_button_description = Abre en una ventana nueva el último archivo fusionado.

# Captions of buttons of the viewer itself.
btn_set_coordinate_center = Definir origen de coordenadas
btn_set_coordinates = Definir coordenadas
btn_reset_coordinate_center = Restablecer origen de coordenadas

# Options window: a row has room for about 60 characters.
option_guid_duplication_group_name = Si el GUID de un objeto ya está en uso
option_guid_duplication_generate = Asignar un GUID nuevo al objeto
option_guid_duplication_skip = Omitir el objeto
option_guid_duplication_remember = Recordar esta opción y no volver a preguntar
option_ignore_units = Ignorar diferencias de unidades (sin convertir los valores)
option_ignore_enume_errors = Ignorar valores de enumeración desconocidos
btn_ok = Aceptar
merge_specific = Fusionar emplazamientos, edificios y plantas según:

# The two choices of merge_specific.
name = Nombre
nameAndGuid = Nombre y GUID

# Progress. A colon and the name of a file may follow, as they may after btn_merge.
progress_bar_overall_progress = Progreso total
checking_files = Comprobando archivos
reading_file = Leyendo archivo
deleting_entities_from = Eliminando objetos omitidos
exporting_file_as = Guardando archivo
finalizing = Finalizando
progress_bar_loading = Cargando
progress_bar_deleting = Eliminando
progress_bar_saving = Guardando

# The question after the cancel button; btnCancelName is the caption of its box.
continue_question = ¿Desea continuar?
progress_bar_cancel_message = ¿Seguro que desea cancelar?
btnCancelName = Cancelar

# Save dialog. "merged" goes straight behind the name of the first file: tower_merged.ifc.
filter_caption = Archivos IFC (*.ifc, *.ifczip)
merged = _fusionado

# Message boxes of the merge.
error_caption = Error
no_file_selected_caption = Ningún modelo cargado
no_file_selected_message = No hay ningún modelo IFC cargado. Cargue al menos dos modelos para fusionarlos.
combining_failed = La fusión requiere al menos dos proyectos. Compruebe que los objetos elegidos pertenezcan a dos o más proyectos cargados.
large_file_question = El tamaño total de los archivos que se van a fusionar supera los 100 MB. La fusión puede tardar mucho y consumir mucha memoria.
show_log_question = Se han notificado problemas. ¿Desea abrir el archivo de registro?

# Stands before the path of the log, at the end of every error box.
merge_combine_log = Archivo de registro:

# Before and behind the path of a file: the merge stops there.
unable_to_continue = "No se pudo leer por completo este archivo:\n"
merging_terminate = "\nLa fusión se interrumpirá."

# The report of projects that do not fit. Its sentences are, with the program's part in brackets:
#   not_all_projects_merge [ "a.ifc"(IFC4)] due_to_invalid_schema [.]
#   not_all_projects_merge [ "a.ifc"] due_to_invalid_units [: and the units of a.ifc]
# A list of files follows the last two.
not_all_projects_merge = No todos los proyectos se pueden fusionar con
due_to_invalid_schema = " porque su esquema IFC es distinto"
due_to_invalid_units = " porque no utilizan sus unidades"
projects_that_will_not_be_merged = "\nProyectos que no se fusionarán:\n"
projects_that_will_be_merged = "\nProyectos que se fusionarán con el primero:"

# Errors of files. A blank and what is behind the dots follows.
#   could_not_open_file ... . File path: PATH
#   could_not_open_file_extension ... PATH
#   could_not_open_file_write ... File path: PATH
#   unknown_schema_identifier ... : IDENTIFIER
#   unknown_entity_name_in_schema ... NAME
could_not_open_file = No se pudo abrir el archivo
could_not_open_file_extension = Tipo de archivo no compatible:
could_not_open_file_write = No se pudo abrir el archivo para escritura.
unknown_schema_identifier = Identificador de esquema desconocido
unknown_entity_name_in_schema = El esquema no contiene ninguna clase llamada
fail_to_open_last_created_file_message = No se pudo abrir el último archivo fusionado.
