<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es">
<context>
    <name></name>
    <message id="sidemenu_search">
        <source>sidemenu_search</source>
        <translation>Buscar</translation>
    </message>
    <message id="sidemenu_map">
        <source>sidemenu_map</source>
        <translation>Mapa</translation>
    </message>
    <message id="sidemenu_myplaces">
        <source>sidemenu_myplaces</source>
        <translation>Mis lugares</translation>
    </message>
    <message id="sidemenu_notifications">
        <source>sidemenu_notifications</source>
        <translation>Notificaciones</translation>
    </message>
    <message id="sidemenu_info">
        <source>sidemenu_info</source>
        <translation>Información</translation>
    </message>
    <message id="sidemenu_settings">
        <source>sidemenu_settings</source>
        <translation>Ajustes</translation>
    </message>
    <message id="notifications_receive_more_info">
        <source>notifications_receive_more_info</source>
        <translation>Recibe novedades por SMS</translation>
    </message>
    <message id="search_discover">
        <source>search_discover</source>
        <translation>Descubre</translation>
    </message>
    <message id="search_places">
        <source>search_places</source>
        <translation>Lugares</translation>
    </message>
    <message id="search_offers">
        <source>search_offers</source>
        <translation>Ofertas</translation>
    </message>
    <message id="discover_promo_badge">
        <source>discover_promo_badge</source>
        <translation>DESTACADO</translation>
    </message>
    <message id="discover_ad_badge">
        <source>discover_ad_badge</source>
        <translation>ANUNCIO</translation>
    </message>
    <message id="adv_email_subject">
        <source>adv_email_subject</source>
        <translation>Consulta desde Velmora</translation>
    </message>
    <message id="offers_title">
        <source>offers_title</source>
        <translation>Ofertas</translation>
    </message>
    <message id="filters_title">
        <source>filters_title</source>
        <translation>Filtros</translation>
    </message>
    <message id="filters_clear_all">
        <source>filters_clear_all</source>
        <translation>Quitar todos</translation>
    </message>
    <message id="filters_filter_action">
        <source>filters_filter_action</source>
        <translation>Ver lugares</translation>
    </message>
    <message id="filters_row_all">
        <source>filters_row_all</source>
        <translation>Todos</translation>
    </message>
    <message id="filters_price_rank_upto_7">
        <source>filters_price_rank_upto_7</source>
        <translation>Hasta $7</translation>
    </message>
    <message id="filters_price_rank_7_to_14">
        <source>filters_price_rank_7_to_14</source>
        <translation>De $7 a $14</translation>
    </message>
    <message id="filters_price_rank_14_to_21">
        <source>filters_price_rank_14_to_21</source>
        <translation>De $14 a $21</translation>
    </message>
    <message id="filters_price_rank_21_to_29">
        <source>filters_price_rank_21_to_29</source>
        <translation>De $21 a $29</translation>
    </message>
    <message id="filters_price_rank_over_29">
        <source>filters_price_rank_over_29</source>
        <translation>Más de $29</translation>
    </message>
    <message id="provinces_number_of_places">
        <source>provinces_number_of_places</source>
        <translation>{N} lugares</translation>
    </message>
    <message id="lugar_info_header">
        <source>lugar_info_header</source>
        <translation>INFORMACIÓN</translation>
    </message>
    <message id="lugar_place_out_of_service">
        <source>lugar_place_out_of_service</source>
        <translation>Cerrado temporalmente</translation>
    </message>
    <message id="lugar_place_out_of_service_reason">
        <source>lugar_place_out_of_service_reason</source>
        <translation>Motivo: {REASON}</translation>
    </message>
    <message id="lugar_place_out_of_service_reason_unknown">
        <source>lugar_place_out_of_service_reason_unknown</source>
        <translation>No sabemos el motivo ni hasta cuándo.</translation>
    </message>
    <message id="lugar_address_subheader">
        <source>lugar_address_subheader</source>
        <translation>DIRECCIÓN</translation>
    </message>
    <message id="lugar_avg_price_subheader">
        <source>lugar_avg_price_subheader</source>
        <translation>PRECIO MEDIO</translation>
    </message>
    <message id="lugar_cuisines_subheader">
        <source>lugar_cuisines_subheader</source>
        <translation>COCINA</translation>
    </message>
    <message id="lugar_hours_subheader">
        <source>lugar_hours_subheader</source>
        <translation>HORARIO</translation>
    </message>
    <message id="lugar_make_a_call">
        <source>lugar_make_a_call</source>
        <translation>Llamar</translation>
    </message>
    <message id="lugar_no_phone_numbers">
        <source>lugar_no_phone_numbers</source>
        <translation>Sin teléfono</translation>
    </message>
    <message id="lugar_gallery">
        <source>lugar_gallery</source>
        <translation>Fotos</translation>
    </message>
    <message id="lugar_offers">
        <source>lugar_offers</source>
        <translation>Ofertas</translation>
    </message>
    <message id="lugar_menu">
        <source>lugar_menu</source>
        <translation>Carta</translation>
    </message>
    <message id="lugar_moreinfo">
        <source>lugar_moreinfo</source>
        <translation>Más información</translation>
    </message>
    <message id="lugar_notes_on_RESTAURANT_NAME">
        <source>lugar_notes_on_RESTAURANT_NAME</source>
        <translation>Tus notas sobre {RESTAURANT_NAME}</translation>
    </message>
    <message id="lugar_add_to_my_places">
        <source>lugar_add_to_my_places</source>
        <translation>Guardar en mis lugares</translation>
    </message>
    <message id="lugar_cameraicon_number_of_pictures">
        <source>lugar_cameraicon_number_of_pictures</source>
        <translation>&lt;fotos-icon&gt;{I}&lt;/fotos-icon&gt;&lt;fotos&gt; {N} FOTOS&lt;/fotos&gt;</translation>
    </message>
    <message id="map_title">
        <source>map_title</source>
        <translation>Mapa</translation>
    </message>
    <message id="menu_title">
        <source>menu_title</source>
        <translation>Carta</translation>
    </message>
    <message id="moreinfo_title">
        <source>moreinfo_title</source>
        <translation>Más información</translation>
    </message>
    <message id="moreinfo_rest_group_header">
        <source>moreinfo_rest_group_header</source>
        <translation>GRUPO</translation>
    </message>
    <message id="moreinfo_service_types_header">
        <source>moreinfo_service_types_header</source>
        <translation>SERVICIOS</translation>
    </message>
    <message id="moreinfo_place_options_header">
        <source>moreinfo_place_options_header</source>
        <translation>INSTALACIONES</translation>
    </message>
    <message id="moreinfo_payment_options_header">
        <source>moreinfo_payment_options_header</source>
        <translation>FORMAS DE PAGO</translation>
    </message>
    <message id="moreinfo_website_header">
        <source>moreinfo_website_header</source>
        <translation>SITIO WEB</translation>
    </message>
    <message id="moreinfo_email_header">
        <source>moreinfo_email_header</source>
        <translation>CORREO ELECTRÓNICO</translation>
    </message>
    <message id="phone_copy">
        <source>phone_copy</source>
        <translation>Copiar</translation>
    </message>
    <message id="phones_cancel">
        <source>phones_cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message id="save_myplaces_save_to_my_places">
        <source>save_myplaces_save_to_my_places</source>
        <translation>Guardar en mis lugares</translation>
    </message>
    <message id="save_myplaces_favorite">
        <source>save_myplaces_favorite</source>
        <translation>Favorito</translation>
    </message>
    <message id="save_myplaces_visited">
        <source>save_myplaces_visited</source>
        <translation>Visitado</translation>
    </message>
    <message id="save_myplaces_tovisit">
        <source>save_myplaces_tovisit</source>
        <translation>Por visitar</translation>
    </message>
    <message id="save_myplaces_cancel">
        <source>save_myplaces_cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message id="save_myplaces_done">
        <source>save_myplaces_done</source>
        <translation>Guardar</translation>
    </message>
    <message id="myplaces_title">
        <source>myplaces_title</source>
        <translation>Mis lugares</translation>
    </message>
    <message id="myplaces_explore">
        <source>myplaces_explore</source>
        <translation>Explorar lugares</translation>
    </message>
    <message id="myplaces_favorites">
        <source>myplaces_favorites</source>
        <translation>Favoritos</translation>
    </message>
    <message id="myplaces_visited">
        <source>myplaces_visited</source>
        <translation>Visitados</translation>
    </message>
    <message id="myplaces_tovisit">
        <source>myplaces_tovisit</source>
        <translation>Por visitar</translation>
    </message>
    <message id="myplaces_save_favorites_by_tapping_ICON_myplaces">
        <source>myplaces_save_favorites_by_tapping_ICON_myplaces</source>
        <translation>&lt;msg&gt;Aún no tienes favoritos. Toca &lt;msg-icon&gt;{I}&lt;/msg-icon&gt; en la ficha de un lugar y márcalo como favorito para tenerlo siempre a mano.&lt;/msg&gt;</translation>
    </message>
    <message id="myplaces_save_visited_by_tapping_ICON_myplaces">
        <source>myplaces_save_visited_by_tapping_ICON_myplaces</source>
        <translation>&lt;msg&gt;Aquí verás los lugares donde ya has estado. Toca &lt;msg-icon&gt;{I}&lt;/msg-icon&gt; en la ficha de un lugar y márcalo como visitado.&lt;/msg&gt;</translation>
    </message>
    <message id="myplaces_save_to_visit_by_tapping_ICON_myplaces">
        <source>myplaces_save_to_visit_by_tapping_ICON_myplaces</source>
        <translation>&lt;msg&gt;¿Algún lugar que quieras probar? Toca &lt;msg-icon&gt;{I}&lt;/msg-icon&gt; en su ficha y márcalo como por visitar.&lt;/msg&gt;</translation>
    </message>
    <message id="settings_title">
        <source>settings_title</source>
        <translation>Ajustes</translation>
    </message>
    <message id="settings_header_language">
        <source>settings_header_language</source>
        <translation>IDIOMA</translation>
    </message>
    <message id="settings_header_notifications">
        <source>settings_header_notifications</source>
        <translation>NOTIFICACIONES</translation>
    </message>
    <message id="settings_receive_notifications">
        <source>settings_receive_notifications</source>
        <translation>Novedades por SMS</translation>
    </message>
    <message id="settings_subscribed_yes">
        <source>settings_subscribed_yes</source>
        <translation>Activadas</translation>
    </message>
    <message id="settings_subscribed_no">
        <source>settings_subscribed_no</source>
        <translation>Desactivadas</translation>
    </message>
    <message id="settings_header_places_out_of_service">
        <source>settings_header_places_out_of_service</source>
        <translation>LUGARES CERRADOS</translation>
    </message>
    <message id="settings_show_closed_places">
        <source>settings_show_closed_places</source>
        <translation>Mostrar lugares cerrados</translation>
    </message>
    <message id="settings_analytics">
        <source>settings_analytics</source>
        <translation>ESTADÍSTICAS DE USO</translation>
    </message>
    <message id="settings_enable_analytics">
        <source>settings_enable_analytics</source>
        <translation>Enviar estadísticas anónimas</translation>
    </message>
    <message id="info_header_version">
        <source>info_header_version</source>
        <translation>VERSIÓN</translation>
    </message>
    <message id="info_version">
        <source>info_version</source>
        <translation>Catálogo</translation>
    </message>
    <message id="info_db_outdated">
        <source>info_db_outdated</source>
        <translation>hay una actualización</translation>
    </message>
    <message id="info_db_up_to_date">
        <source>info_db_up_to_date</source>
        <translation>al día</translation>
    </message>
    <message id="info_updates_key_broken">
        <source>info_updates_key_broken</source>
        <translation>No se instalarán actualizaciones: una clave de firma de confianza está dañada. Reinstala la aplicación o avisa al soporte.</translation>
    </message>
    <message id="info_updates_no_key">
        <source>info_updates_no_key</source>
        <translation>No se instalarán actualizaciones: esta instalación no confía en ninguna clave de firma.</translation>
    </message>
    <message id="info_update_db">
        <source>info_update_db</source>
        <translation>Actualizar</translation>
    </message>
    <message id="info_updating">
        <source>info_updating</source>
        <translation>Actualizando el catálogo</translation>
    </message>
    <message id="info_cancel_update">
        <source>info_cancel_update</source>
        <translation>Cancelar</translation>
    </message>
    <message id="info_applying_patches">
        <source>info_applying_patches</source>
        <translation>Aplicando la actualización</translation>
    </message>
    <message id="info_header_contact">
        <source>info_header_contact</source>
        <translation>CONTACTO</translation>
    </message>
    <message id="info_subheader_website">
        <source>info_subheader_website</source>
        <translation>Nuestra web</translation>
    </message>
    <message id="info_subheader_email">
        <source>info_subheader_email</source>
        <translation>Escríbenos</translation>
    </message>
    <message id="info_subheader_social_networks">
        <source>info_subheader_social_networks</source>
        <translation>Síguenos</translation>
    </message>
    <message id="info_rate_app">
        <source>info_rate_app</source>
        <translation>Valora Velmora</translation>
    </message>
    <message id="info_shake_app_to_get_fortunes">
        <source>info_shake_app_to_get_fortunes</source>
        <translation>Agita el dispositivo y recibirás una fortuna: un poco de sabiduría para la mesa.</translation>
    </message>
    <message id="careful_with_the_shaking">
        <source>careful_with_the_shaking</source>
        <translation>¡Cuidado! Si sigues agitando así tu {DEVICE}, acabará por los suelos. Descansa un momento.</translation>
    </message>
    <message id="subscribe_intro_text">
        <source>subscribe_intro_text</source>
        <translation>¿Quieres enterarte de los lugares nuevos y las ofertas de tu provincia? Te avisamos por SMS.</translation>
    </message>
    <message id="subscribe_intro_not_now">
        <source>subscribe_intro_not_now</source>
        <translation>Ahora no</translation>
    </message>
    <message id="subscribe_intro_yes_sure">
        <source>subscribe_intro_yes_sure</source>
        <translation>¡Sí, claro!</translation>
    </message>
    <message id="notifications_provinces_select_provinces">
        <source>notifications_provinces_select_provinces</source>
        <translation>Elige las provincias que te interesan</translation>
    </message>
    <message id="notifications_provinces_select_all">
        <source>notifications_provinces_select_all</source>
        <translation>Todas</translation>
    </message>
    <message id="notifications_provinces_finish">
        <source>notifications_provinces_finish</source>
        <translation>Listo</translation>
    </message>
    <message id="notifications_provinces_will_send_an_sms">
        <source>notifications_provinces_will_send_an_sms</source>
        <translation>Enviaremos un SMS para darte de alta</translation>
    </message>
    <message id="subscribe_sms_body_intro">
        <source>subscribe_sms_body_intro</source>
        <translation>Alta</translation>
    </message>
    <message id="wt_help_us_find_the_database">
        <source>wt_help_us_find_the_database</source>
        <translation>Velmora funciona sin conexión, con un catálogo de todos los restaurantes guardado en este equipo. Vamos a traerlo.</translation>
    </message>
    <message id="wt_action_download">
        <source>wt_action_download</source>
        <translation>Descargar el catálogo</translation>
    </message>
    <message id="wt_action_copy_with_itunes">
        <source>wt_action_copy_with_itunes</source>
        <translation>Tengo un archivo de catálogo</translation>
    </message>
    <message id="open_itunes_and_connect_your_DEVICE">
        <source>open_itunes_and_connect_your_DEVICE</source>
        <translation>Busca el archivo de catálogo que te dieron: su nombre termina en &lt;u&gt;.vmr&lt;/u&gt;.</translation>
    </message>
    <message id="go_to_applications">
        <source>go_to_applications</source>
        <translation>Suéltalo sobre esta ventana, o elígelo con &lt;u&gt;Abrir catálogo…&lt;/u&gt; aquí abajo.</translation>
    </message>
    <message id="in_shared_files_click_the_app_velmora">
        <source>in_shared_files_click_the_app_velmora</source>
        <translation>O cópialo tú en esta carpeta:
&lt;c&gt;{DOCUMENTS}&lt;/c&gt;
En un teléfono, usa la función de compartir archivos del sistema para dejarlo en los Documentos de Velmora.</translation>
    </message>
    <message id="add_the_file_to_the_documents_panel">
        <source>add_the_file_to_the_documents_panel</source>
        <translation>Velmora ve el archivo en un segundo y lo comprueba; después toca &lt;u&gt;Empezar&lt;/u&gt;.</translation>
    </message>
    <message id="itunes_cancel">
        <source>itunes_cancel</source>
        <translation>Volver</translation>
    </message>
    <message id="wt_start">
        <source>wt_start</source>
        <translation>Empezar</translation>
    </message>
    <message id="downloading_database">
        <source>downloading_database</source>
        <translation>Descargando el catálogo</translation>
    </message>
    <message id="download_cancel">
        <source>download_cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message id="lugares_fewer_filters">
        <source>lugares_fewer_filters</source>
        <translation>No hay lugares con estos filtros. Prueba con menos.</translation>
    </message>
    <message id="cli_usage">
        <source>cli_usage</source>
        <translation>uso: velmora [opciones] [velmora://ENLACE]

  --home DIR          guarda el catálogo, los ajustes y las cachés en DIR
                      (por defecto: VELMORA_HOME, si no las carpetas del usuario)
  --open ENLACE       abre un enlace velmora:// cuando la guía se muestra
  --self-test         muestra la primera pantalla, informa del arranque y la memoria, y sale
  --screenshot FICH   guarda como PNG el primer fotograma de la pantalla alcanzada, y sale
  --dump-ui           imprime en JSON los elementos accesibles visibles, y sale
  --check-updates     pregunta a Internet y a la red local por un catálogo más nuevo,
                      imprime en JSON quién respondió, y sale (sin ventana)
  --update-now        descarga e instala un catálogo más nuevo (un parche o, si no,
                      el archivo entero), imprime el progreso y un resultado JSON,
                      y sale (sin ventana)
  --update-url URL    dónde está la información de actualización (por omisión: el ajuste update-url)
  --analytics-url URL adónde van los informes de uso, si el usuario los permite (por
                      omisión: el ajuste analytics-url)
  --position-log FICHERO reproduce la posición del usuario desde un registro NMEA
                      (en lugar de la fuente del dispositivo)
  --version           imprime la versión y sale
  -h, --help          imprime esta ayuda y sale

enlaces: velmora://place/ID, velmora://province/ID, velmora://search?q=TEXTO,
         velmora://map[?place=ID], velmora://myplaces, velmora://settings,
         velmora://info, velmora://offers, velmora://discover</translation>
    </message>
    <message id="a11y_menu">
        <source>a11y_menu</source>
        <translation>Menú</translation>
    </message>
    <message id="a11y_search">
        <source>a11y_search</source>
        <translation>Buscar</translation>
    </message>
    <message id="a11y_cancel">
        <source>a11y_cancel</source>
        <translation>Atrás</translation>
    </message>
    <message id="a11y_back">
        <source>a11y_back</source>
        <translation>Atrás</translation>
    </message>
    <message id="a11y_filter">
        <source>a11y_filter</source>
        <translation>Filtros</translation>
    </message>
    <message id="a11y_call">
        <source>a11y_call</source>
        <translation>Llamar</translation>
    </message>
    <message id="a11y_clear_search">
        <source>a11y_clear_search</source>
        <translation>Borrar la búsqueda</translation>
    </message>
    <message id="a11y_province_button">
        <source>a11y_province_button</source>
        <translation>Provincia: %1, elegir otra</translation>
    </message>
    <message id="a11y_place_list">
        <source>a11y_place_list</source>
        <translation>Lugares</translation>
    </message>
    <message id="a11y_letter_index">
        <source>a11y_letter_index</source>
        <translation>Índice de letras</translation>
    </message>
    <message id="a11y_letter">
        <source>a11y_letter</source>
        <translation>Letra %1</translation>
    </message>
    <message id="a11y_tab">
        <source>a11y_tab</source>
        <translation>Pestaña %1</translation>
    </message>
    <message id="a11y_close">
        <source>a11y_close</source>
        <translation>Cerrar</translation>
    </message>
    <message id="a11y_search_field">
        <source>a11y_search_field</source>
        <translation>Buscar lugares</translation>
    </message>
    <message id="a11y_menu_list">
        <source>a11y_menu_list</source>
        <translation>Menú principal</translation>
    </message>
    <message id="a11y_more_info">
        <source>a11y_more_info</source>
        <translation>Más información</translation>
    </message>
    <message id="a11y_dim">
        <source>a11y_dim</source>
        <translation>Cerrar la hoja</translation>
    </message>
    <message id="a11y_drawer">
        <source>a11y_drawer</source>
        <translation>Cerrar el menú</translation>
    </message>
    <message id="a11y_phone_numbers">
        <source>a11y_phone_numbers</source>
        <translation>Teléfonos</translation>
    </message>
    <message id="a11y_place_row">
        <source>a11y_place_row</source>
        <translation>%1. %2. %3</translation>
    </message>
    <message id="a11y_delete">
        <source>a11y_delete</source>
        <translation>Eliminar</translation>
    </message>
    <message id="a11y_reserve">
        <source>a11y_reserve</source>
        <translation>Reservar</translation>
    </message>
    <message id="a11y_out_of_service">
        <source>a11y_out_of_service</source>
        <translation>Fuera de servicio</translation>
    </message>
    <message id="a11y_province_list">
        <source>a11y_province_list</source>
        <translation>Provincias</translation>
    </message>
    <message id="filters_page_location">
        <source>filters_page_location</source>
        <translation>Zona</translation>
    </message>
    <message id="filters_page_cuisines">
        <source>filters_page_cuisines</source>
        <translation>Cocina</translation>
    </message>
    <message id="filters_page_price">
        <source>filters_page_price</source>
        <translation>Precio</translation>
    </message>
    <message id="offers_none_today">
        <source>offers_none_today</source>
        <translation>Hoy no hay ofertas en esta provincia.</translation>
    </message>
    <message id="lugar_reserve_table">
        <source>lugar_reserve_table</source>
        <translation>Reservar mesa</translation>
    </message>
    <message id="lugar_shared_copied">
        <source>lugar_shared_copied</source>
        <translation>Nombre y dirección copiados, listos para pegar</translation>
    </message>
    <message id="a11y_share">
        <source>a11y_share</source>
        <translation>Compartir</translation>
    </message>
    <message id="a11y_place_picture">
        <source>a11y_place_picture</source>
        <translation>Foto del lugar</translation>
    </message>
    <message id="a11y_edit">
        <source>a11y_edit</source>
        <translation>Editar</translation>
    </message>
    <message id="myplaces_edit">
        <source>myplaces_edit</source>
        <translation>Editar</translation>
    </message>
    <message id="myplaces_done">
        <source>myplaces_done</source>
        <translation>Listo</translation>
    </message>
    <message id="a11y_picture_unreadable">
        <source>a11y_picture_unreadable</source>
        <translation>Esta foto no se puede mostrar</translation>
    </message>
    <message id="gallery_copied">
        <source>gallery_copied</source>
        <translation>Foto y pie copiados, listos para pegar</translation>
    </message>
    <message id="wt_checking_database">
        <source>wt_checking_database</source>
        <translation>Comprobando el catálogo…</translation>
    </message>
    <message id="wt_loading_failed">
        <source>wt_loading_failed</source>
        <translation>no se pudo cargar el catálogo</translation>
    </message>
    <message id="wt_retry">
        <source>wt_retry</source>
        <translation>Reintentar</translation>
    </message>
    <message id="wt_open_catalogue">
        <source>wt_open_catalogue</source>
        <translation>Abrir catálogo…</translation>
    </message>
    <message id="wt_catalogue_files">
        <source>wt_catalogue_files</source>
        <translation>Catálogos de Velmora</translation>
    </message>
    <message id="wt_catalogue_downloaded">
        <source>wt_catalogue_downloaded</source>
        <translation>Catálogo descargado</translation>
    </message>
    <message id="wt_catalogue_found">
        <source>wt_catalogue_found</source>
        <translation>Catálogo encontrado</translation>
    </message>
    <message id="wt_import_not_a_catalogue">
        <source>wt_import_not_a_catalogue</source>
        <translation>Ese archivo no es un catálogo de Velmora.</translation>
    </message>
    <message id="wt_import_other_key">
        <source>wt_import_other_key</source>
        <translation>Ese catálogo no se puede leer: es de otra aplicación o está dañado.</translation>
    </message>
    <message id="wt_chooser_missing">
        <source>wt_chooser_missing</source>
        <translation>No se puede abrir el selector de archivos: falta una parte de la aplicación. Copia el catálogo en la carpeta de arriba o arrástralo aquí.</translation>
    </message>
    <message id="wt_copied_file_unusable">
        <source>wt_copied_file_unusable</source>
        <translation>No se puede usar %1: está dañado o no es un catálogo de esta guía. El archivo se queda donde está; copia o elige otro.</translation>
    </message>
    <message id="wt_import_damaged">
        <source>wt_import_damaged</source>
        <translation>Ese catálogo está dañado. Pide una copia nueva.</translation>
    </message>
    <message id="wt_import_no_date">
        <source>wt_import_no_date</source>
        <translation>Ese catálogo no tiene fecha, así que Velmora no puede usarlo.</translation>
    </message>
    <message id="wt_import_not_newer">
        <source>wt_import_not_newer</source>
        <translation>Velmora ya tiene este catálogo o uno más nuevo.</translation>
    </message>
    <message id="wt_import_copy_failed">
        <source>wt_import_copy_failed</source>
        <translation>No se pudo copiar el catálogo. ¿Está lleno el disco?</translation>
    </message>
    <message id="update_error">
        <source>update_error</source>
        <translation>Error: %1</translation>
    </message>
    <message id="info_social_facebook">
        <source>info_social_facebook</source>
        <translation>Facebook</translation>
    </message>
    <message id="info_social_twitter">
        <source>info_social_twitter</source>
        <translation>Twitter</translation>
    </message>
    <message id="info_social_googleplus">
        <source>info_social_googleplus</source>
        <translation>Google+</translation>
    </message>
    <message id="a11y_location_off">
        <source>a11y_location_off</source>
        <translation>Mostrar mi ubicación</translation>
    </message>
    <message id="a11y_location_waiting">
        <source>a11y_location_waiting</source>
        <translation>Buscando tu ubicación; toca para detener</translation>
    </message>
    <message id="a11y_location_centered">
        <source>a11y_location_centered</source>
        <translation>Dejar de mostrar mi ubicación</translation>
    </message>
    <message id="a11y_location_not_centered">
        <source>a11y_location_not_centered</source>
        <translation>Centrar el mapa en mí</translation>
    </message>
    <message id="a11y_map_open_card">
        <source>a11y_map_open_card</source>
        <translation>Abrir la ficha del lugar</translation>
    </message>
    <message id="a11y_map">
        <source>a11y_map</source>
        <translation>Mapa de los lugares</translation>
    </message>
    <message id="a11y_map_loading">
        <source>a11y_map_loading</source>
        <translation>Cargando el mapa</translation>
    </message>
    <message id="settings_dev_header">
        <source>settings_dev_header</source>
        <translation>DEVELOPER TOOLS</translation>
    </message>
    <message id="settings_dev_notifications">
        <source>settings_dev_notifications</source>
        <translation>Notifications (WIP)</translation>
    </message>
    <message id="settings_dev_opinions">
        <source>settings_dev_opinions</source>
        <translation>User opinions (WIP)</translation>
    </message>
    <message id="settings_dev_update_always">
        <source>settings_dev_update_always</source>
        <translation>Always enable DB updates</translation>
    </message>
    <message id="settings_dev_keep_old_dbs">
        <source>settings_dev_keep_old_dbs</source>
        <translation>Keep all DBs, even those which aren't the newest</translation>
    </message>
    <message id="settings_dev_allow_unsigned_updates">
        <source>settings_dev_allow_unsigned_updates</source>
        <translation>Install unsigned updates when no key is trusted</translation>
    </message>
    <message id="settings_dev_enable_subscribe">
        <source>settings_dev_enable_subscribe</source>
        <translation>Force enable subscriptions</translation>
    </message>
    <message id="settings_dev_user_defaults">
        <source>settings_dev_user_defaults</source>
        <translation>User Defaults</translation>
    </message>
    <message id="settings_dev_build_fts">
        <source>settings_dev_build_fts</source>
        <translation>Build FTS Index</translation>
    </message>
    <message id="settings_dev_clear_cache">
        <source>settings_dev_clear_cache</source>
        <translation>Clear NSURL Cache</translation>
    </message>
    <message id="settings_dev_delete_database">
        <source>settings_dev_delete_database</source>
        <translation>Delete Database</translation>
    </message>
    <message id="settings_dev_unknown">
        <source>settings_dev_unknown</source>
        <translation>Unknown Command</translation>
    </message>
    <message id="settings_dev_delete_title">
        <source>settings_dev_delete_title</source>
        <translation>Delete Database</translation>
    </message>
    <message id="settings_dev_delete_message">
        <source>settings_dev_delete_message</source>
        <translation>Are you sure? Restart app afterwards.</translation>
    </message>
    <message id="settings_dev_delete">
        <source>settings_dev_delete</source>
        <translation>Delete</translation>
    </message>
    <message id="settings_dev_cancel">
        <source>settings_dev_cancel</source>
        <translation>Cancel</translation>
    </message>
    <message id="settings_locked">
        <source>settings_locked</source>
        <translation>Fijado por esta instalación</translation>
    </message>
    <message id="user_defaults_title">
        <source>user_defaults_title</source>
        <translation>User Defaults</translation>
    </message>
    <message id="user_defaults_edit">
        <source>user_defaults_edit</source>
        <translation>Edit</translation>
    </message>
    <message id="user_defaults_done">
        <source>user_defaults_done</source>
        <translation>Done</translation>
    </message>
    <message id="user_defaults_delete">
        <source>user_defaults_delete</source>
        <translation>Delete</translation>
    </message>
    <message id="settings_dev_shake">
        <source>settings_dev_shake</source>
        <translation>Shake for a fortune</translation>
    </message>
    <message id="device_phone">
        <source>device_phone</source>
        <translation>teléfono</translation>
    </message>
    <message id="device_computer">
        <source>device_computer</source>
        <translation>ordenador</translation>
    </message>
    <message id="settings_dev_reload">
        <source>settings_dev_reload</source>
        <translation>Reload Database</translation>
    </message>
</context>
</TS>
